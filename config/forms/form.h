// A configuration form: the fields of one dialog, loaded from its INI file,
// changed by the operator under the typing rules, checked and saved in the
// dialog's save order. The dialog on the toolkit and `pxctl config` both
// work through a Form, so they load, type, refuse and save alike.
//
// Loading (see form_defs.h for the forms):
// - A scan time with a unit (the server's PauseTime, stored in seconds) is
//   shown in minutes when it is a whole number of minutes, else in seconds;
//   a shown number above 999 becomes 999 and 0 becomes 1. OK writes the
//   number, times 60 with minutes chosen. A scan time without a unit (the
//   E-mail Agent's CycleTime) is shown as stored, kept within 1 to 999, and
//   saved as its text.
// - Check boxes and the Yes radio pair are "Yes" when the value begins with
//   "y" or "Y"; integers are shown with "%d"; a location is "Right" only for
//   "right" in any case.
// - The E-mail Agent's mail keys live in section "PxEmio-<EMailSystem>"
//   (EMailSystem of Options, default "VIM"); for "MAPI" and "EMAPI" the
//   post office is hidden, not loaded, and not written.
// - The password is kept aside; its field shows one "*" per character.
// - A form that does not load (the network command) opens on its defaults,
//   so its OK always writes every key as shown.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/file_replace.h"
#include "config/forms/field.h"
#include "config/forms/file_stamp.h"
#include "config/forms/form_defs.h"
#include "config/forms/form_messages.h"

namespace px::forms {

// One key as OK writes it.
struct Entry {
  std::string section;
  std::string key;
  std::string value;
};

// A key whose value OK would change; old_value is empty when it is absent.
// Passwords are shown as one "*" per character.
struct Change {
  std::string section;
  std::string key;
  std::optional<std::string> old_value;
  std::string new_value;
};

// Why OK was refused: the message, its arguments and the field to focus.
struct Refusal {
  int message = 0;
  int field = -1;
  std::vector<std::string> args;
};

// The message that refuses a yield percentage outside 0 to 100.
inline constexpr int kYieldOutOfRange = 303;

class Form {
 public:
  Form(const FormDef& def, std::string file);

  const FormDef& def() const { return *def_; }
  const std::string& file() const { return file_; }
  // The operator action OK is recorded as: "config set PROCESS [FORM]".
  std::string action() const;
  std::size_t size() const { return texts_.size(); }
  const FieldDef& field(std::size_t i) const { return def_->fields[i]; }
  // The field called key (any case), or -1.
  int index_of(std::string_view key) const;
  // The field shown by control, or -1.
  int index_of_control(int control) const;

  // Reads every field from the file and remembers the file's stamp.
  void load();

  const std::string& text(std::size_t i) const { return texts_[i]; }
  bool hidden(std::size_t i) const { return hidden_[i]; }
  // False for a field the loaded file leaves out of the form (the post
  // office of a mail system without one): neither shown nor saved, so
  // nothing typed into it could take effect. A field hidden by its dialog
  // (the yield percentage) is still in use: loaded, checked and saved.
  bool in_use(std::size_t i) const { return !hidden_[i] || field(i).hidden; }
  const std::string& mail_section() const { return mail_section_; }

  // The operator changed field i's text to text, leaving the caret at caret:
  // the typing rules are applied and the field keeps the result.
  EditResult edit(std::size_t i, std::string_view text, int caret);
  // Types keys into field i as the operator would after selecting all of
  // its text: one change per character (an empty keys deletes the text).
  // The result tells whether any change beeped or was cut.
  EditResult type(std::size_t i, std::string_view keys);
  // Enters a whole value into field i as `pxctl config set` gives it: typed
  // key by key (type), except into the password, where it is pasted over
  // the field's text in one change, so that each "*" keeps the stored
  // character at its place: the asterisks `config show` prints, given back,
  // keep the password, and "***x" keeps its first three characters.
  EditResult enter(std::size_t i, std::string_view value);
  // Sets a chosen field (check box, radio pair, drop-down) from a word;
  // false when the word names none of its values.
  bool choose(std::size_t i, std::string_view word);
  // The spin bar: adds delta to the scan time, within 1 to 999; true when
  // it had to clamp (a beep).
  bool step(std::size_t i, int delta);

  // The fields as the dialog shows them, hidden ones left out: key and text.
  std::vector<std::pair<std::string, std::string>> lines() const;

  // The check OK makes before it saves; nothing when it may save. Besides
  // the yield percentage (303), a value the rewrite would refuse because it
  // would not read back as written (a TAB, outer blanks, or key "=" value
  // longer than the 511 characters of a line the reader returns) is refused
  // here, naming its field (1618), rather than failing the save with a file
  // message. A path field of its full 255 characters always saves.
  std::optional<Refusal> check() const;
  // The keys OK writes, in order, with their values.
  std::vector<Entry> entries() const;
  // The entries whose value differs from the file's now.
  std::vector<Change> changes() const;
  // The changes as lines "Key: old -> new" for the operator ("(none)" for an
  // absent key).
  std::vector<std::string> change_lines() const;
  // True when the file is no longer as it was when the form loaded (or saved).
  bool changed_on_disk() const;
  // Takes the file as it is now as the state the form knows (after a
  // sub-dialog of the same dialog saved other keys into it).
  void take_disk_state() { stamp_ = stamp_of(file_); }
  // Writes entries() in order in one locked, crash-safe rewrite of the
  // file that keeps the previous file as NAME.bak, through files (the real
  // file system when null), and takes the file's new stamp. On failure the
  // file is as it was and the result names the failed step
  // (failure_message gives its message).
  FileResult save(FileSystem* files = nullptr);

 private:
  void load_field(std::size_t i);
  void load_scan_time(std::size_t i, int unit);
  std::string section_of(const FieldDef& field) const;
  std::string saved_value(std::size_t i) const;
  std::string current_mail_system() const;

  const FormDef* def_;
  std::string file_;
  std::vector<std::string> texts_;
  std::vector<bool> hidden_;
  std::string secret_;  // the password field's hidden text
  std::string mail_section_;
  FileStamp stamp_;
};

// "PxEmio-<system>", and whether a mail system has a post office.
std::string mail_section_for(std::string_view system);
bool has_post_office(std::string_view system);

}  // namespace px::forms
