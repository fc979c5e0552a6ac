#include "tsql/letters.h"

#include <array>

namespace azcoll::tsql {

bool isLetterBeyondAscii(std::uint32_t codePoint) {
  struct Range {
    std::uint32_t first;
    std::uint32_t last;
  };
  // The blocks of letters; between them stand blanks, punctuation, arrows and other symbols.
  static constexpr std::array<Range, 18> kLetters = {{{0xAA, 0xAA},
                                                      {0xB5, 0xB5},
                                                      {0xBA, 0xBA},
                                                      {0xC0, 0xD6},
                                                      {0xD8, 0xF6},
                                                      {0xF8, 0x2C1},
                                                      {0x300, 0x36F},
                                                      {0x370, 0x37D},
                                                      {0x37F, 0x386},
                                                      {0x388, 0x481},
                                                      {0x48A, 0x167F},
                                                      {0x1681, 0x180D},
                                                      {0x180F, 0x1FFF},
                                                      {0x2C00, 0x2DFF},
                                                      {0x3041, 0xA48C},
                                                      {0xA500, 0xD7A3},
                                                      {0xF900, 0xFDCF},
                                                      {0xFF21, 0xFF3A}}};
  for (const Range& range : kLetters) {
    if (codePoint >= range.first && codePoint <= range.last) {
      return true;
    }
  }
  return false;
}

}  // namespace azcoll::tsql
