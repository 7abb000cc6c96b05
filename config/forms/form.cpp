#include "config/forms/form.h"

#include <cerrno>

#include "common/ini_profile.h"
#include "common/text.h"

namespace px::forms {

namespace {

constexpr std::size_t kValueSize = 512;  // an INI line's value at most
constexpr std::size_t kSystemSize = 256;
constexpr int kSecondsPerMinute = 60;
constexpr std::size_t kYieldReadLength = 4;
constexpr int kYieldMaximum = 100;
// Marks an absent key when a value is read for a comparison.
constexpr std::string_view kAbsent = "\x01";

std::size_t read_size(const FieldDef& field) {
  return (field.limit == 0 ? kValueSize - 1 : field.limit) + 1;
}

}  // namespace

std::string mail_section_for(std::string_view system) { return "PxEmio-" + std::string(system); }

bool has_post_office(std::string_view system) {
  return !iequals(system, "MAPI") && !iequals(system, "EMAPI");
}

Form::Form(const FormDef& def, std::string file)
    : def_(&def), file_(std::move(file)), texts_(def.fields.size()),
      hidden_(def.fields.size()) {
  for (std::size_t i = 0; i < texts_.size(); ++i) {
    const FieldDef& f = field(i);
    texts_[i] = f.kind == FieldKind::kLocation ? "Left" : f.fallback;
    hidden_[i] = f.hidden;
  }
}

int Form::index_of(std::string_view key) const {
  for (std::size_t i = 0; i < size(); ++i) {
    if (iequals(key, field(i).key)) return static_cast<int>(i);
  }
  return -1;
}

int Form::index_of_control(int control) const {
  for (std::size_t i = 0; i < size(); ++i) {
    if (field(i).control == control) return static_cast<int>(i);
  }
  return -1;
}

std::string Form::current_mail_system() const {
  return ini::get_string("Options", "EMailSystem", "VIM", kSystemSize, file_);
}

std::string Form::section_of(const FieldDef& f) const {
  return f.section == kMailSection ? mail_section_ : std::string(f.section);
}

void Form::load() {
  if (!file_.empty()) ini::drop_file(file_);
  stamp_ = stamp_of(file_);
  if (!def_->loads || file_.empty()) return;
  int unit = index_of("Unit");
  if (index_of("MailBoxID") >= 0) {
    std::string system = current_mail_system();
    mail_section_ = mail_section_for(system);
    int post_office = index_of("PostOffice");
    if (post_office >= 0) hidden_[static_cast<std::size_t>(post_office)] = !has_post_office(system);
  }
  for (std::size_t i = 0; i < size(); ++i) {
    if (field(i).kind == FieldKind::kScanTime) {
      load_scan_time(i, unit);
    } else if (field(i).kind != FieldKind::kUnit && !(hidden_[i] && !field(i).hidden)) {
      load_field(i);  // a field hidden for this file (the post office) is not read
    }
  }
}

// With a unit the value is seconds, shown in minutes when it is whole
// minutes; without one it is shown as stored.
void Form::load_scan_time(std::size_t i, int unit) {
  const FieldDef& f = field(i);
  int n = ini::get_int(f.section, f.key, parse_int(f.fallback), file_);
  if (unit < 0) {
    texts_[i] = std::to_string(clamp_scan_time(n));
    return;
  }
  bool minutes = n % kSecondsPerMinute == 0;
  if (minutes) n /= kSecondsPerMinute;
  if (n > kScanTimeMaximum) n = kScanTimeMaximum;
  if (n == 0) n = kScanTimeMinimum;
  texts_[i] = std::to_string(n);
  texts_[static_cast<std::size_t>(unit)] = minutes ? "minutes" : "seconds";
}

void Form::load_field(std::size_t i) {
  const FieldDef& f = field(i);
  std::string section = section_of(f);
  switch (f.kind) {
    case FieldKind::kInteger:
      texts_[i] = std::to_string(ini::get_int(section, f.key, parse_int(f.fallback), file_));
      break;
    case FieldKind::kCheck:
    case FieldKind::kRadioYes:
      texts_[i] = yes_no(ini::is_yes(ini::get_string(section, f.key, f.fallback, kValueSize, file_)));
      break;
    case FieldKind::kLocation:
      texts_[i] = iequals(ini::get_string(section, f.key, "", kValueSize, file_), "Right")
                      ? "Right" : "Left";
      break;
    case FieldKind::kPassword:
      secret_ = ini::get_string(section, f.key, f.fallback, read_size(f), file_);
      texts_[i] = std::string(secret_.size(), '*');
      break;
    default:
      texts_[i] = ini::get_string(section, f.key, f.fallback, read_size(f), file_);
      break;
  }
}

EditResult Form::edit(std::size_t i, std::string_view text, int caret) {
  EditResult result = apply_typing_rules(field(i), text, caret, &secret_);
  texts_[i] = result.text;
  return result;
}

EditResult Form::type(std::size_t i, std::string_view keys) {
  EditResult total;
  if (keys.empty()) total = edit(i, "", 0);
  std::string text;
  int caret = 0;
  for (char key : keys) {
    if (key == '\n' || key == '\r') {  // a one-line edit takes no line break
      total.beep = true;
      continue;
    }
    text.insert(static_cast<std::size_t>(caret), 1, key);
    EditResult step = edit(i, text, caret + 1);
    text = step.text;
    caret = step.caret;
    total.beep = total.beep || step.beep;
    total.cut_to_limit = total.cut_to_limit || step.cut_to_limit;
  }
  total.text = texts_[i];
  total.caret = static_cast<int>(total.text.size());
  return total;
}

EditResult Form::enter(std::size_t i, std::string_view value) {
  if (field(i).kind != FieldKind::kPassword) return type(i, value);
  return edit(i, value, static_cast<int>(value.size()));
}

bool Form::choose(std::size_t i, std::string_view word) {
  std::string value = choice_value(field(i).kind, word);
  if (value.empty()) return false;
  texts_[i] = value;
  return true;
}

bool Form::step(std::size_t i, int delta) {
  int wanted = parse_int(texts_[i]) + delta;
  int kept = clamp_scan_time(wanted);
  texts_[i] = std::to_string(kept);
  return kept != wanted;
}

std::vector<std::pair<std::string, std::string>> Form::lines() const {
  std::vector<std::pair<std::string, std::string>> out;
  for (std::size_t i = 0; i < size(); ++i) {
    if (!hidden_[i]) out.emplace_back(field(i).key, texts_[i]);
  }
  return out;
}

std::optional<Refusal> Form::check() const {
  int yield = index_of("YieldPercent");
  if (yield >= 0) {
    int value = parse_int(texts_[static_cast<std::size_t>(yield)].substr(0, kYieldReadLength));
    if (value < 0 || value > kYieldMaximum) return Refusal{kYieldOutOfRange, yield, {}};
  }
  for (const Entry& entry : entries()) {
    IniChange change{entry.section, entry.key, entry.value};
    if (unwritable_part(change, Delimiters{}) != Unwritable::kNone) {
      return Refusal{kValueNotSavable, index_of(entry.key), {entry.key}};
    }
  }
  return std::nullopt;
}

std::string Form::saved_value(std::size_t i) const {
  const FieldDef& f = field(i);
  switch (f.kind) {
    case FieldKind::kInteger:
      return std::to_string(parse_int(texts_[i]));
    case FieldKind::kPassword:
      return secret_;
    case FieldKind::kScanTime: {
      int unit = index_of("Unit");
      if (unit < 0) return texts_[i];
      int n = parse_int(texts_[i]);
      if (texts_[static_cast<std::size_t>(unit)] == "seconds") return std::to_string(n);
      return std::to_string(static_cast<unsigned>(n) * kSecondsPerMinute);
    }
    default:
      return texts_[i];
  }
}

std::vector<Entry> Form::entries() const {
  std::vector<Entry> out;
  std::string system;
  if (!mail_section_.empty() || index_of("MailBoxID") >= 0) system = current_mail_system();
  for (const char* key : def_->save_order) {
    std::size_t i = static_cast<std::size_t>(index_of(key));
    const FieldDef& f = field(i);
    std::string section;
    if (f.section == kMailSection) {
      if (std::string_view(f.key) == "PostOffice" && !has_post_office(system)) continue;
      section = mail_section_for(system);
    } else {
      section = f.section;
    }
    out.push_back({section, f.key, saved_value(i)});
  }
  return out;
}

std::vector<Change> Form::changes() const {
  std::vector<Change> out;
  if (!file_.empty()) ini::drop_file(file_);
  for (Entry& entry : entries()) {
    std::string old = ini::get_string(entry.section, entry.key, kAbsent, kValueSize, file_);
    if (old == entry.value) continue;
    std::optional<std::string> old_value;
    if (old != kAbsent) old_value = old;
    if (entry.key == "Password") {
      if (old_value) old_value = std::string(old_value->size(), '*');
      entry.value = std::string(entry.value.size(), '*');
    }
    out.push_back({entry.section, entry.key, old_value, entry.value});
  }
  return out;
}

std::vector<std::string> Form::change_lines() const {
  std::vector<std::string> lines;
  for (const Change& change : changes()) {
    lines.push_back(change.key + ": " + change.old_value.value_or("(none)") + " -> " +
                    change.new_value);
  }
  return lines;
}

std::string Form::action() const {
  std::string action = std::string("config set ") + def_->process;
  if (*def_->name != '\0') action += std::string(" ") + def_->name;
  return action;
}

bool Form::changed_on_disk() const { return stamp_of(file_) != stamp_; }

// Every key of the form in one locked, crash-safe rewrite that keeps the
// previous file as a backup: a reader sees all of the form's keys or none.
FileResult Form::save(FileSystem* files) {
  if (file_.empty()) return {FileStep::kLock, ENOENT};
  std::vector<Entry> saved = entries();
  std::vector<IniChange> changes;
  changes.reserve(saved.size());
  for (const Entry& entry : saved) changes.push_back({entry.section, entry.key, entry.value});
  FileResult written = ini::write_changes(changes, file_, {.keep_backup = true, .files = files});
  stamp_ = stamp_of(file_);
  return written;
}

}  // namespace px::forms
