#pragma once

/// Node layout selectors of the KVX library. Every node is stored so that it reads back to the bit, in single precision where that suffices.
enum vrpKVXApi25 { vrp_kvx_exact_nodes = 0x855F };
