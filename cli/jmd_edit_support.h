// What the pxctl jmd editing commands share: naming lists, reading
// COLUMN=VALUE words and step numbers, and the load-edit-write of a JMD file.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "config/operator.h"
#include "jmd/editors/jmd_editor.h"
#include "jmd/editors/list_kind.h"

namespace px::cli {

// The synopsis of every jmd command, for usage errors.
extern const char* const kJmdSynopsis;

// "jobs", "tasks", "printers", "memory"; nullopt for any other word.
std::optional<editors::ListKind> list_named(const std::string& word);
// The word a list is named by.
std::string list_word(editors::ListKind kind);

// Field values typed into a row dialog: the control and the text.
using Typing = std::vector<std::pair<int, std::string>>;

// Reads COLUMN=VALUE words (column names of the JMD tables, matched without
// regard to case) into the controls of the dialog of kind in mode. False for
// a word without "=", a column the dialog does not show, one it does not
// let the operator type into, or a value with a line break.
bool parse_typing(const std::vector<std::string>& words, size_t first, editors::ListKind kind,
                  editors::FormMode mode, Typing& typing);

// Types each value into its field, in the order given.
void type_into(editors::RowForm& form, const Typing& typing);

// A positive decimal number; nullopt for anything else.
std::optional<long> positive_number(const std::string& word);

// The change of a JMD file by the command of words w (w[0] the command,
// w[1] the file), as one operator action (config/operator_action.h): refused
// with exit 1 in read-only mode, and recorded in the audit log. The action
// is named "jmd" and the words before values_from (the COLUMN=VALUE words
// from there on are values, which are never recorded). Loads the file
// (exit 1 after the load's messages), runs edit, and when it answers
// kExitOk writes the file back over itself (exit 1 when that fails). Any
// other answer is returned with the file untouched.
int edit_jmd_file(const std::vector<std::string>& w,
                  const std::function<int(editors::JmdEditor& editor, Operator& op)>& edit,
                  size_t values_from = std::string::npos);

// The steps of job, and the job's name as stored (its case) when it has any.
std::vector<long> steps_of(editors::JmdEditor& editor, std::string& job);

// The step numbers (1-based) as rows of steps; nullopt after showing
// kNoSuchStep for a number past the last step.
std::optional<std::vector<long>> step_rows(Operator& op, const std::vector<long>& steps,
                                           const std::vector<long>& numbers,
                                           const std::string& job);

// pxctl jmd subcommands. w holds the words after "jmd".
int jmd_show(const std::vector<std::string>& w);
int jmd_add(const std::vector<std::string>& w);
int jmd_edit(const std::vector<std::string>& w);
int jmd_delete(const std::vector<std::string>& w);
int jmd_new_job(const std::vector<std::string>& w);
int jmd_copy_job(const std::vector<std::string>& w);
int jmd_add_step(const std::vector<std::string>& w);
int jmd_edit_step(const std::vector<std::string>& w);
int jmd_delete_step(const std::vector<std::string>& w);
int jmd_move_step(const std::vector<std::string>& w);

}  // namespace px::cli
