// The configuration forms of the server (PXSERVER), the E-mail Agent
// (PXEMIO) and the Print Agent (PXMERGE): each form's fields in the order
// its dialog lists them, and the order its OK writes them in.
//
//   process   form         dialog                                 section(s)
//   PXSERVER  (main)       Main Configuration for %s          134 Options, Plexar
//   PXSERVER  network      Network Command                    136 Options (never loaded)
//   PXSERVER  locations    Nexa File Locations for %s         147 Paths
//   PXEMIO    (main)       E-Mail Agent Configuration for %s  133 Options, PxEmio-<system>
//   PXEMIO    locations    E-Mail Agent File Locations for %s 148 Paths
//   PXEMIO    jobcard      Job Card                           149 JobCard
//   PXMERGE   (main)       Print Agent Configuration for %s   138 Plexar, Paths
//   PXMERGE   currency     Print Agent Currency Options       139 Special
//   PXMERGE   characters   Print Agent Special Characters     140 Special
//
// The server's forms edit the instance's configuration file itself; the
// agents' forms edit the file named by IniFileName in the agent's section.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "config/forms/field.h"

namespace px::forms {

enum class FormKind : std::uint8_t {
  kServer,
  kNetwork,
  kServerLocations,
  kEmail,
  kEmailLocations,
  kJobCard,
  kPrint,
  kCurrency,
  kCharacters,
};

struct FormDef {
  FormKind kind;
  const char* process;                      // the process key it belongs to
  const char* name;                         // pxctl's word for it; "" for the main form
  int dialog;                               // its dialog resource
  std::span<const FieldDef> fields;         // in the dialog's order
  std::span<const char* const> save_order;  // keys, in the order OK writes them
  bool loads;                               // false: opens on its defaults
};

const FormDef& form_def(FormKind kind);

// The form of process (compared exactly) called name ("" for the main one);
// nullptr when there is none.
const FormDef* find_form(std::string_view process, std::string_view name);

// The field of form called key (any case); nullptr when there is none.
const FieldDef* find_field(const FormDef& form, std::string_view key);

// The process names the built-in forms exist for.
inline constexpr const char* kServerProcess = "PXSERVER";
inline constexpr const char* kEmailProcess = "PXEMIO";
inline constexpr const char* kPrintProcess = "PXMERGE";

}  // namespace px::forms
