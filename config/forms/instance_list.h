// The list of instances as "Nexa Control Configuration" (dialog 121) and
// `pxctl instances add|edit|default|remove` change it, and the fields of
// one instance's record ("Edit Nexa Control Configuration", dialog 124).
//
// The list is read from the install file in instance order, every instance
// with its whole name (beyond the enumerator's limits, so OK loses none). OK (apply)
// empties section Configuration of the install file and writes one key per
// row in list order (name = configuration file), so the first row is the
// default instance from then on, and writes each row's title as
// WindowTitle of section Plexar in that row's configuration file (rows
// without a configuration file get none).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/file_replace.h"
#include "config/forms/field.h"
#include "config/forms/file_stamp.h"
#include "config/instances.h"

namespace px::forms {

// The record dialog's fields: name, description, configuration file.
inline constexpr FieldDef kRecordName{"Name", "Configuration", FieldKind::kText, 4, 74, ""};
inline constexpr FieldDef kRecordTitle{"WindowTitle", "Plexar", FieldKind::kText, 6, 256, ""};
inline constexpr FieldDef kRecordConfig{"ConfigFile", "Configuration", FieldKind::kText, 8, 256,
                                        ""};

class InstanceList {
 public:
  // Reads the instances from the install file and remembers its stamp.
  void load();

  const std::vector<Instance>& rows() const { return rows_; }
  const std::string& install_file() const { return install_; }
  // The row of the instance called name (any case), or -1.
  int find(std::string_view name) const;
  // True when name can be a key of section Configuration: not empty, no
  // "=" and no line break, not starting with "[" or ";", no outer blanks.
  static bool usable_name(std::string_view name);

  // Make Default: the row moves to the top; the first row stays.
  void make_default(std::size_t row);
  void replace(std::size_t row, Instance instance);
  void add(Instance instance);
  void remove(std::size_t row);

  // The key of the first entry OK would write that its file would not give
  // back as written (an instance's name for its configuration file,
  // "WindowTitle" for a title), so that OK can refuse before writing any
  // file; nullopt when OK may apply.
  std::optional<std::string> unsavable_value() const;
  // True when the install file changed on disk since load or apply.
  bool changed_on_disk() const;
  // How OK went: true when every file was written, else the first file
  // that was not and why (that file is as it was; the others are written).
  struct Applied {
    FileResult result;
    std::string file;
    explicit operator bool() const { return static_cast<bool>(result); }
  };
  // OK, with the file steps of files (the real file system when null).
  Applied apply(FileSystem* files = nullptr);

 private:
  std::vector<Instance> rows_;
  std::string install_;
  FileStamp stamp_;
};

}  // namespace px::forms
