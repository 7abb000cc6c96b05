// Every row the editor's JMD holds, as text: what a saved file must give back
// when it is loaded again.
#pragma once

#include <string>
#include <vector>

#include "jmd/editors/jmd_editor.h"

namespace px::editors {

// One row's fields after the key column, each as text.
using TextRow = std::vector<std::string>;

// The rows of every table, in table order, each table's rows sorted. An empty
// field reads as "*", the way the file writes it; sorting after that keeps an
// empty key, which sorts first in the table but not as "*", comparable. Empty
// when the JMD cannot be opened.
std::vector<std::vector<TextRow>> table_rows(JmdEditor& editor);

}  // namespace px::editors
