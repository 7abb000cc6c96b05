// A fresh temporary directory for one test, removed with everything in it when
// the object goes out of scope.
#pragma once

#include <string>
#include <string_view>

namespace px {

class TestDir {
 public:
  TestDir();
  ~TestDir();
  TestDir(const TestDir&) = delete;
  TestDir& operator=(const TestDir&) = delete;

  const std::string& path() const { return path_; }
  // path() + "/" + name.
  std::string file(std::string_view name) const;
  // Writes text to the named file and returns its full path.
  std::string write(std::string_view name, std::string_view text) const;
  // The named file's contents; empty when it cannot be read.
  std::string read(std::string_view name) const;

 private:
  std::string path_;
};

}  // namespace px
