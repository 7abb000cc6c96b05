// pxctl jmd add, edit and delete: a row of tasks, printers or managed memory
// through its dialog's rules, and deleting rows of any list (a job name with
// all its steps).
#include <algorithm>

#include "cli/cli.h"
#include "cli/jmd_edit_support.h"
#include "jmd/editors/editor_messages.h"

namespace px::cli {

using editors::FormMode;
using editors::ListKind;

namespace {

std::optional<ListKind> row_list_named(const std::string& word) {
  std::optional<ListKind> kind = list_named(word);
  return kind == ListKind::kJobNames ? std::nullopt : kind;
}

// The row keyed key, or 0 after showing kNotListed.
long listed_row(editors::JmdEditor& editor, Operator& op, ListKind kind, const std::string& key) {
  long row = editor.find_row(kind, key);
  if (row == 0) op.show(editors::msg::kNotListed, {key, list_word(kind)});
  return row;
}

}  // namespace

int jmd_add(const std::vector<std::string>& w) {
  // add FILE LIST COLUMN=VALUE ...
  std::optional<ListKind> kind = w.size() >= 3 ? row_list_named(w[2]) : std::nullopt;
  Typing typing;
  if (!kind || !parse_typing(w, 3, *kind, FormMode::kNew, typing)) {
    return usage_error("jmd add", "pxctl jmd add FILE tasks|printers|memory COLUMN=VALUE ...");
  }
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator&) {
    editors::RowForm form = editor.new_form(*kind);
    type_into(form, typing);
    return editor.ok(form).accepted() ? kExitOk : kExitFailed;
  }, 3);
}

int jmd_edit(const std::vector<std::string>& w) {
  // edit FILE LIST KEY COLUMN=VALUE ...
  std::optional<ListKind> kind = w.size() >= 4 ? row_list_named(w[2]) : std::nullopt;
  Typing typing;
  if (!kind || !parse_typing(w, 4, *kind, FormMode::kEdit, typing)) {
    return usage_error("jmd edit", "pxctl jmd edit FILE tasks|printers|memory KEY COLUMN=VALUE ...");
  }
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator& op) {
    long row = listed_row(editor, op, *kind, w[3]);
    if (row == 0) return kExitFailed;
    std::optional<editors::RowForm> form = editor.edit_form(*kind, row);
    if (!form) return kExitFailed;
    type_into(*form, typing);
    return editor.ok(*form, row).accepted() ? kExitOk : kExitFailed;
  }, 4);
}

int jmd_delete(const std::vector<std::string>& w) {
  // delete FILE LIST KEY ...
  std::optional<ListKind> kind = w.size() >= 4 ? list_named(w[2]) : std::nullopt;
  if (!kind) return usage_error("jmd delete", "pxctl jmd delete FILE jobs|tasks|printers|memory KEY ...");
  return edit_jmd_file(w, [&](editors::JmdEditor& editor, Operator& op) {
    std::vector<long> rows;
    for (size_t i = 3; i < w.size(); ++i) {
      long row = listed_row(editor, op, *kind, w[i]);
      if (row == 0) return kExitFailed;
      if (std::find(rows.begin(), rows.end(), row) == rows.end()) rows.push_back(row);
    }
    return editor.delete_rows(*kind, rows) == static_cast<long>(rows.size()) ? kExitOk
                                                                             : kExitFailed;
  });
}

}  // namespace px::cli
