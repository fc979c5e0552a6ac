// The program that libFuzzer drives: one target per program, chosen at compile time.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "fuzz/targets.h"

#ifndef AZCOLL_FUZZ_ENTRY
#error "AZCOLL_FUZZ_ENTRY names the entry function"
#endif

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    azcoll::fuzz::AZCOLL_FUZZ_ENTRY({reinterpret_cast<const char*>(data), size});
  } catch (const std::exception& error) {
    std::cerr << "\nBROKEN: " << error.what() << std::endl;
    std::abort();  // libFuzzer keeps the input
  }
  return 0;
}
