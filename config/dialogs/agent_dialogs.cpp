#include "config/dialogs/agent_dialogs.h"

#include <span>

#include "config/dialogs/form_dialog.h"
#include "config/dialogs/select_directory_dialog.h"
#include "config/forms/form_defs.h"
#include "config/settings.h"

namespace px::dialogs {

namespace {

// E-Mail Agent Configuration (133).
constexpr int kEmailSpin = 5;
constexpr int kEmailMinutes = 6;
constexpr int kEmailSeconds = 7;
constexpr int kEmailLocationsButton = 14;
constexpr int kEmailJobCardButton = 15;
constexpr int kPostOfficeLabel = 18;
constexpr int kPostOffice = 21;
constexpr int kBrowsePostOffice = 23;
constexpr int kEmailChanges = 24;
constexpr int kEmailStatus = 25;
// E-Mail Agent File Locations (148): "Browse..." 9 to 11 beside 4, 6, 8.
constexpr int kEmailBrowseFirst = 9;
constexpr int kEmailLocationFields[] = {4, 6, 8};
// Print Agent Configuration (138).
constexpr int kCurrencyButton = 3;
constexpr int kCharactersButton = 4;
constexpr int kPrintVerbosity = 9;
constexpr int kYieldLabel = 10;
constexpr int kYield = 11;
constexpr int kPrintBrowseFirst = 19;  // 19 to 21 beside 14, 16, 18
constexpr int kPrintPathFields[] = {14, 16, 18};
constexpr int kPrintChanges = 22;
constexpr int kPrintStatus = 23;
// The sub-dialogs of the Print Agent put the focus on their first field.
constexpr int kFirstSubField = 4;
constexpr int kLocationLeft = 254;
constexpr int kLocationRight = 255;
constexpr const char* kCantOpenDialog = "Can't open dialog";

// The agent's INI file, empty when IniFileName is blank.
std::string agent_file(const char* process, const std::string& config_file) {
  return path_setting(process, "IniFileName", config_file);
}

bool run(const ConfigContext& context, forms::FormKind kind, const std::string& file,
         const FormControls& controls, ExtraHandler extra = {}) {
  forms::Form form(forms::form_def(kind), file);
  form.load();
  return run_form_dialog(context, form, controls, std::move(extra));
}

// Handles a click on one of the "Browse..." buttons first .. first + n - 1
// that pick a directory for fields[i].
bool browse_click(const tk::Event& e, forms::Form& form, const ConfigContext& context, int first,
                  std::span<const int> fields) {
  if (e.type != tk::EventType::kControl || e.notice != tk::Notice::kClicked) return false;
  int i = e.control - first;
  if (i < 0 || static_cast<std::size_t>(i) >= fields.size()) return false;
  if (browse_for_directory(e.window, fields[static_cast<std::size_t>(i)], context)) {
    take_field_text(e.window, form, fields[static_cast<std::size_t>(i)]);
  }
  return true;
}

// Focuses control on create; nothing else.
ExtraHandler focus_on_create(int control) {
  return [control](const tk::Event& e, forms::Form&) {
    if (e.type == tk::EventType::kCreate) e.window.control(control).focus();
    return false;
  };
}

// A sub-dialog of the Print Agent: "Can't open dialog" when it fails.
using DialogRunner = bool (*)(const ConfigContext&, const std::string&);

void open_print_sub_dialog(const ConfigContext& context, forms::Form& parent,
                           DialogRunner run_dialog, const std::string& config_file) {
  if (!run_sub_dialog(parent, [&] { return run_dialog(context, config_file); })) {
    context.toolkit.post_error(kCantOpenDialog);
  }
}

// A sub-dialog of the E-mail Agent: message 101 when it fails.
void open_email_sub_dialog(const ConfigContext& context, forms::Form& parent,
                           DialogRunner run_dialog, const std::string& config_file) {
  if (!run_sub_dialog(parent, [&] { return run_dialog(context, config_file); })) {
    context.op.show(kMsgDialogNotCreated);
  }
}

}  // namespace

bool run_email_dialog(const ConfigContext& context, const std::string& config_file) {
  std::string file = agent_file(forms::kEmailProcess, config_file);
  if (file.empty()) return true;
  FormControls controls;
  controls.spin = kEmailSpin;
  controls.minutes = kEmailMinutes;
  controls.seconds = kEmailSeconds;
  controls.changes = kEmailChanges;
  controls.status = kEmailStatus;
  controls.shown_with = {{kPostOffice, kPostOfficeLabel, kBrowsePostOffice}};
  return run(context, forms::FormKind::kEmail, file, controls,
             [&context, config_file](const tk::Event& e, forms::Form& form) {
               if (e.type != tk::EventType::kControl || e.notice != tk::Notice::kClicked) {
                 return false;
               }
               switch (e.control) {
                 case kEmailLocationsButton:
                   open_email_sub_dialog(context, form, &run_email_locations_dialog, config_file);
                   return true;
                 case kEmailJobCardButton:
                   open_email_sub_dialog(context, form, &run_job_card_dialog, config_file);
                   return true;
                 case kBrowsePostOffice:
                   if (browse_for_directory(e.window, kPostOffice, context)) {
                     take_field_text(e.window, form, kPostOffice);
                   }
                   return true;
                 default:
                   return false;
               }
             });
}

bool run_email_locations_dialog(const ConfigContext& context, const std::string& config_file) {
  std::string file = agent_file(forms::kEmailProcess, config_file);
  if (file.empty()) return true;
  return run(context, forms::FormKind::kEmailLocations, file, FormControls{},
             [&context](const tk::Event& e, forms::Form& form) {
               return browse_click(e, form, context, kEmailBrowseFirst, kEmailLocationFields);
             });
}

bool run_job_card_dialog(const ConfigContext& context, const std::string& config_file) {
  std::string file = agent_file(forms::kEmailProcess, config_file);
  if (file.empty()) return true;
  return run(context, forms::FormKind::kJobCard, file, FormControls{});
}

bool run_print_dialog(const ConfigContext& context, const std::string& config_file) {
  std::string file = agent_file(forms::kPrintProcess, config_file);
  if (file.empty()) return true;
  FormControls controls;
  controls.shown_with = {{kYield, kYieldLabel}};
  controls.changes = kPrintChanges;
  controls.status = kPrintStatus;
  return run(context, forms::FormKind::kPrint, file, controls,
             [&context, config_file](const tk::Event& e, forms::Form& form) {
               if (e.type == tk::EventType::kCreate) {
                 e.window.control(kPrintVerbosity).focus();
                 return false;
               }
               if (e.is_control(kCurrencyButton, tk::Notice::kClicked)) {
                 open_print_sub_dialog(context, form, &run_currency_dialog, config_file);
                 return true;
               }
               if (e.is_control(kCharactersButton, tk::Notice::kClicked)) {
                 open_print_sub_dialog(context, form, &run_characters_dialog, config_file);
                 return true;
               }
               return browse_click(e, form, context, kPrintBrowseFirst, kPrintPathFields);
             });
}

bool run_currency_dialog(const ConfigContext& context, const std::string& config_file) {
  std::string file = agent_file(forms::kPrintProcess, config_file);
  if (file.empty()) return true;
  FormControls controls;
  controls.location_rows = {kLocationLeft, kLocationRight};
  return run(context, forms::FormKind::kCurrency, file, controls, focus_on_create(kFirstSubField));
}

bool run_characters_dialog(const ConfigContext& context, const std::string& config_file) {
  std::string file = agent_file(forms::kPrintProcess, config_file);
  if (file.empty()) return true;
  return run(context, forms::FormKind::kCharacters, file, FormControls{},
             focus_on_create(kFirstSubField));
}

}  // namespace px::dialogs
