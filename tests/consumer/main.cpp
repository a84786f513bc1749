// A host that sees nothing but the installed tree. It fails to build when the umbrella header reaches a header that is not
// installed, and fails to link when something that it uses is not exported.
#include <mendexlib.h>

#include <cstdio>

int main() {
  coPageArr<int> numbers;
  for (int i = 0; i < 1000; ++i) numbers[i] = i;
  std::printf("%d\n", numbers.count());
  return numbers.count() == 1000 ? 0 : 1;
}
