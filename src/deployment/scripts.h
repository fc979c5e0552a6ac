#pragma once

#include <string_view>

namespace azcoll::deployment {

/// A script of the folder `schema`, carried in the program so that it needs no files.
struct Script {
  std::string_view name;  ///< file name
  std::string_view text;
};

// Defined in a source that the build makes from the files (cmake/embed_texts.cmake).
extern const Script kTabelle;
extern const Script kProcedure;
extern const Script kEsempio;
extern const Script kPermessi;

}  // namespace azcoll::deployment
