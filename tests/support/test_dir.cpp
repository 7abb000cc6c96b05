#include "tests/support/test_dir.h"

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace px {

TestDir::TestDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "pxtest.XXXXXX").string();
  if (mkdtemp(pattern.data()) != nullptr) path_ = pattern;
}

TestDir::~TestDir() {
  std::error_code ignored;
  if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
}

std::string TestDir::file(std::string_view name) const { return path_ + "/" + std::string(name); }

std::string TestDir::write(std::string_view name, std::string_view text) const {
  std::string full = file(name);
  std::ofstream out(full, std::ios::binary | std::ios::trunc);
  out.write(text.data(), static_cast<std::streamsize>(text.size()));
  return full;
}

std::string TestDir::read(std::string_view name) const {
  std::ifstream in(file(name), std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace px
