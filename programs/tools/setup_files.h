// The files of one installation: those of the package and those that are made of its texts.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "setup.h"

namespace vordane::tools {

// What an installation puts aside of texts that are installed: those it could not read, and those of an
// Access file, whose place the embedded engine's file takes.
inline const std::filesystem::path damagedTexts = places.texts() += ".damaged";
inline const std::filesystem::path accessTexts = places.texts() += ".access";

struct NewFile {
  std::filesystem::path place;
  Keeper keeper = Keeper::release;
  std::function<void(const std::filesystem::path& path)> make;
  std::uintmax_t size = 0;  // as far as it is known before
};

// The word size to install: the wanted one, or the only one that the package holds. The package for 32-bit
// systems runs on 64-bit ones too.
Words packagedWords(const std::filesystem::path& package, Words wanted);

// The programs of one word size and the files of both, the simulated exchange only where it is wanted. Throws
// SetupFailure where the package lacks that word size.
std::vector<NewFile> packagedFiles(const std::filesystem::path& package, Words words, bool demonstration);

// The pages of the guide in one language; none where the package has none.
std::vector<NewFile> packagedGuide(const std::filesystem::path& package, const std::string& language);

// The languages of a package. Throws SetupFailure when one is not whole.
std::vector<LanguageSource> packagedLanguages(const std::filesystem::path& package);

}  // namespace vordane::tools
