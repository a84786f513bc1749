// `mendex repair`.
#include <gtest/gtest.h>
