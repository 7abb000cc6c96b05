#include "config/dialogs/server_dialogs.h"

#include "common/messages.h"
#include "config/dialogs/form_dialog.h"
#include "config/dialogs/select_directory_dialog.h"

namespace px::dialogs {

namespace {

// Main Configuration (134).
constexpr int kLogFile = 12;
constexpr int kNetworkButton = 13;
constexpr int kSpin = 14;
constexpr int kLocationsButton = 15;
constexpr int kMinutes = 23;
constexpr int kSeconds = 24;
constexpr int kBrowseLogFile = 25;
constexpr int kChanges = 26;
constexpr int kStatus = 27;
constexpr int kLogFilePrompt = 261;
// Network Command (136): the check box, then each label and its edit.
constexpr int kSend = 3;
constexpr int kNetworkFields[] = {4, 5, 6, 7, 8, 9, 10, 11};
// File Locations (147).
constexpr int kLocationsOk = 10;
constexpr int kBrowseFirst = 11;  // 11 to 14 beside 3, 5, 7, 9
constexpr int kLocationFields[] = {3, 5, 7, 9};

bool run(const ConfigContext& context, forms::FormKind kind, const std::string& file,
         const FormControls& controls, ExtraHandler extra = {}) {
  forms::Form form(forms::form_def(kind), file);
  form.load();
  return run_form_dialog(context, form, controls, std::move(extra));
}

void enable_network_fields(tk::Window dialog, bool on) {
  for (int id : kNetworkFields) dialog.control(id).set_enabled(on);
}

}  // namespace

bool run_server_dialog(const ConfigContext& context, const std::string& file) {
  FormControls controls;
  controls.spin = kSpin;
  controls.minutes = kMinutes;
  controls.seconds = kSeconds;
  controls.changes = kChanges;
  controls.status = kStatus;
  return run(context, forms::FormKind::kServer, file, controls,
             [&context, file](const tk::Event& e, forms::Form& form) {
               tk::Window dialog = e.window;
               if (e.type == tk::EventType::kCreate) {
                 dialog.control(kNetworkButton).set_visible(false);
                 return true;
               }
               if (e.type != tk::EventType::kControl || e.notice != tk::Notice::kClicked) {
                 return false;
               }
               switch (e.control) {
                 case kNetworkButton:
                   if (!run_sub_dialog(form, [&] { return run_network_dialog(context, file); })) {
                     context.op.show(kMsgDialogNotCreated);
                   }
                   return true;
                 case kLocationsButton:
                   if (!run_sub_dialog(form,
                                       [&] { return run_server_locations_dialog(context, file); })) {
                     context.op.show(kMsgDialogNotCreated);
                   }
                   return true;
                 case kBrowseLogFile:
                   if (browse_for_file(dialog, kLogFile, messages::message_label(kLogFilePrompt))) {
                     take_field_text(dialog, form, kLogFile);
                   }
                   return true;
                 default:
                   return false;
               }
             });
}

bool run_network_dialog(const ConfigContext& context, const std::string& file) {
  return run(context, forms::FormKind::kNetwork, file, FormControls{},
             [](const tk::Event& e, forms::Form&) {
               tk::Window dialog = e.window;
               if (e.type == tk::EventType::kCreate) {
                 dialog.control(kSend).set_checked(false);
                 enable_network_fields(dialog, false);
               } else if (e.is_control(kSend, tk::Notice::kClicked)) {
                 enable_network_fields(dialog, dialog.control(kSend).checked());
               }
               return false;  // the form takes the check box's state too
             });
}

bool run_server_locations_dialog(const ConfigContext& context, const std::string& file) {
  FormControls controls;
  controls.ok = kLocationsOk;
  return run(context, forms::FormKind::kServerLocations, file, controls,
             [&context](const tk::Event& e, forms::Form& form) {
               if (e.type != tk::EventType::kControl || e.notice != tk::Notice::kClicked) {
                 return false;
               }
               int browse = e.control - kBrowseFirst;
               if (browse < 0 || browse >= 4) return false;
               int field = kLocationFields[browse];
               if (browse_for_directory(e.window, field, context)) {
                 take_field_text(e.window, form, field);
               }
               return true;
             });
}

}  // namespace px::dialogs
