#pragma once

/// Tag: make a deep copy.
struct utCopy {};
