// A fresh directory under the system temp dir, removed with its contents.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace pkt {

class scratch_dir {
 public:
  scratch_dir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "pktlib_test_XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
  }
  ~scratch_dir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  scratch_dir(const scratch_dir&) = delete;
  scratch_dir& operator=(const scratch_dir&) = delete;

  std::string file(const std::string& name) const { return (path_ / name).string(); }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace pkt
