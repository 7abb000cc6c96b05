#include "config/forms/directory_browser.h"

#include <algorithm>
#include <cctype>
#include <span>
#include <filesystem>
#include <system_error>

#include "common/file_util.h"
#include "common/text.h"

namespace px::forms {

namespace {

constexpr std::string_view kNetworkTypes[] = {"nfs", "nfs4", "cifs", "smb3", "fuse.sshfs", "9p"};
constexpr std::string_view kDiskTypes[] = {"ext2", "ext3", "ext4",   "xfs",  "btrfs", "zfs",
                                           "f2fs", "jfs",  "reiserfs", "ntfs", "ntfs3", "bcachefs"};

bool one_of(std::string_view word, std::span<const std::string_view> words) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// A field of the mount table with its octal escapes ("\040" for a blank) undone.
std::string unescape(std::string_view field) {
  std::string out;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] == '\\' && i + 3 < field.size()) {
      std::string_view digits = field.substr(i + 1, 3);
      if (std::all_of(digits.begin(), digits.end(),
                                             [](char c) { return c >= '0' && c <= '7'; })) {
        out += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
        i += 3;
        continue;
      }
    }
    out += field[i];
  }
  return out;
}

std::vector<std::string_view> fields_of(std::string_view line) {
  std::vector<std::string_view> fields;
  std::size_t at = 0;
  while (at < line.size()) {
    std::size_t start = line.find_first_not_of(" \t", at);
    if (start == std::string_view::npos) break;
    std::size_t end = line.find_first_of(" \t", start);
    if (end == std::string_view::npos) end = line.size();
    fields.push_back(line.substr(start, end - start));
    at = end;
  }
  return fields;
}

// True when prefix is path or a directory above it.
bool is_path_prefix(std::string_view prefix, std::string_view path) {
  if (prefix == "/") return !path.empty() && path[0] == '/';
  return path.substr(0, prefix.size()) == prefix &&
         (path.size() == prefix.size() || path[prefix.size()] == '/');
}

bool name_before(const std::string& a, const std::string& b) {
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    char x = to_lower(a[i]);
    char y = to_lower(b[i]);
    if (x != y) return x < y;
  }
  return a.size() != b.size() ? a.size() < b.size() : a < b;
}

}  // namespace

std::vector<Drive> drives_from_mount_table(std::string_view text) {
  std::vector<Drive> root;
  std::vector<Drive> others;
  while (!text.empty()) {
    std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
    std::vector<std::string_view> f = fields_of(line);
    if (f.size() < 3) continue;
    std::string source = unescape(f[0]);
    std::string point = unescape(f[1]);
    std::string_view type = f[2];
    Drive drive{point, point, true};
    if (point == "/") {
      root = {drive};
      continue;
    }
    if (one_of(type, kNetworkTypes)) {
      drive.listed = !source.empty() && source != "none";
      drive.row = point;
      drive.row.append("  ").append(source);
    } else if (!one_of(type, kDiskTypes)) {
      continue;
    }
    std::erase_if(others, [&](const Drive& d) { return d.mount_point == point; });
    others.push_back(drive);
  }
  std::stable_sort(others.begin(), others.end(),
                   [](const Drive& a, const Drive& b) { return a.mount_point < b.mount_point; });
  root.insert(root.end(), others.begin(), others.end());
  if (root.empty() || root.front().mount_point != "/") root.insert(root.begin(), {"/", "/", true});
  return root;
}

std::vector<Drive> system_drives() {
  return drives_from_mount_table(read_file("/proc/self/mounts").value_or(""));
}

DirectoryBrowser::DirectoryBrowser(std::vector<Drive> drives, std::string_view start,
                                   const std::string& cwd)
    : all_drives_(std::move(drives)) {
  for (const Drive& d : all_drives_) {
    if (d.listed) drives_.push_back(d);
  }
  if (start.size() >= 2 && start[1] == ':' && std::isalpha(static_cast<unsigned char>(start[0]))) {
    start.remove_prefix(2);
  }
  std::filesystem::path wanted(start);
  if (wanted.is_relative()) wanted = std::filesystem::path(cwd) / wanted;
  std::error_code error;
  if (start.empty() || !std::filesystem::is_directory(wanted, error) ||
      !list(wanted.lexically_normal().string())) {
    list(cwd);
  }
}

std::vector<std::string> DirectoryBrowser::drive_rows() const {
  std::vector<std::string> rows;
  for (const Drive& d : drives_) rows.push_back(d.row);
  return rows;
}

int DirectoryBrowser::row_of_drive(const std::string& directory) const {
  int best = -1;
  std::size_t best_length = 0;
  int counter = 0;  // counts left-out drives too
  for (const Drive& d : all_drives_) {
    if (is_path_prefix(d.mount_point, directory) && d.mount_point.size() >= best_length &&
        d.listed) {
      best = counter;
      best_length = d.mount_point.size();
    }
    ++counter;
  }
  return best;
}

bool DirectoryBrowser::list(const std::string& directory) {
  std::string path = directory.size() > 1 && directory.back() == '/'
                         ? directory.substr(0, directory.size() - 1) : directory;
  std::error_code error;
  std::filesystem::directory_iterator it(path, error);
  if (error) return false;
  std::vector<std::string> entries;
  if (path != "/") entries.emplace_back("..");
  for (const std::filesystem::directory_entry& entry : it) {
    std::error_code kind_error;
    if (entry.is_directory(kind_error)) entries.push_back(entry.path().filename().string());
  }
  std::sort(entries.begin(), entries.end(), name_before);
  directory_ = path;
  entries_ = std::move(entries);
  drive_row_ = row_of_drive(directory_);
  return true;
}

bool DirectoryBrowser::choose_drive(int row) {
  if (row < 0 || static_cast<std::size_t>(row) >= drives_.size()) return false;
  return list(drives_[static_cast<std::size_t>(row)].mount_point);
}

bool DirectoryBrowser::enter(std::string_view entry) {
  if (entry == "..") {
    std::filesystem::path parent = std::filesystem::path(directory_).parent_path();
    return list(parent.empty() ? "/" : parent.string());
  }
  if (entry.empty() || entry.find('/') != std::string_view::npos) return false;
  return list(directory_ == "/" ? "/" + std::string(entry) : directory_ + "/" + std::string(entry));
}

}  // namespace px::forms
