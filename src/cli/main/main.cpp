#include <iostream>

#include "cli/app.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  return azcoll::cli::run({argv + (argc > 0 ? 1 : 0), argv + argc}, std::cin, std::cout, std::cerr);
}
