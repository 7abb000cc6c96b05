#include "config/forms/form_defs.h"

#include "common/text.h"

namespace px::forms {

namespace {

using K = FieldKind;

constexpr std::size_t kPath = 255;

// The scan time's unit has no key of its own: it converts PauseTime.
constexpr FieldDef kServerFields[] = {
    {"PauseTime", "Options", K::kScanTime, 5, kScanTimeLength, "5"},
    {"Unit", nullptr, K::kUnit, 24, 0, "seconds"},
    {"FileSpec", "Options", K::kText, 7, kPath, "*.DAT"},
    {"DeleteExt", "Options", K::kText, 9, kPath, "DA*"},
    {"BackupFiles", "Options", K::kCheck, 10, 0, "No"},
    {"LogFile", "Plexar", K::kText, 12, kPath, ""},
    {"LogFileSize", "Plexar", K::kDigits, 20, 0, "100000"},
    {"Verbosity", "Plexar", K::kInteger, 17, 3, "-10"},
};
constexpr const char* kServerSave[] = {"PauseTime", "BackupFiles", "LogFile", "LogFileSize",
                                       "Verbosity", "FileSpec",    "DeleteExt"};

constexpr FieldDef kNetworkFields[] = {
    {"NetworkQueues", "Options", K::kCheck, 3, 0, "No"},
    {"NetworkCaptureCmd", "Options", K::kText, 5, kPath, ""},
    {"NetworkLocalDevice", "Options", K::kText, 7, 0, ""},
    {"NetworkExcludeQueues", "Options", K::kText, 9, 0, ""},
    {"NetworkIncludeQueues", "Options", K::kText, 11, 0, ""},
};
constexpr const char* kNetworkSave[] = {"NetworkQueues", "NetworkCaptureCmd", "NetworkLocalDevice",
                                        "NetworkExcludeQueues", "NetworkIncludeQueues"};

constexpr FieldDef kServerLocationFields[] = {
    {"DataPath", "Paths", K::kText, 3, kPath, ""},
    {"ErrorPath", "Paths", K::kText, 5, kPath, ""},
    {"BackupPath", "Paths", K::kText, 7, kPath, ""},
    {"MSTPath", "Paths", K::kText, 9, kPath, ""},
};
constexpr const char* kServerLocationSave[] = {"MSTPath", "DataPath", "BackupPath", "ErrorPath"};

constexpr FieldDef kEmailFields[] = {
    {"CycleTime", "Options", K::kScanTime, 22, kScanTimeLength, "15"},
    {"Seconds", "Options", K::kRadioYes, 7, 0, "No"},
    {"LogToFile", "Options", K::kCheck, 10, 0, "No"},
    {"DeleteAfterRead", "Options", K::kCheck, 8, 0, "No"},
    {"BackupFiles", "Options", K::kCheck, 9, 0, "No"},
    {"MailBoxID", kMailSection, K::kText, 19, 0, ""},
    {"Password", kMailSection, K::kPassword, 20, kPasswordLength, ""},
    {"PostOffice", kMailSection, K::kText, 21, 0, ""},
};
constexpr const char* kEmailSave[] = {"Seconds",    "CycleTime", "LogToFile", "DeleteAfterRead",
                                      "BackupFiles", "PostOffice", "MailBoxID", "Password"};

constexpr FieldDef kEmailLocationFields[] = {
    {"DataPath", "Paths", K::kText, 4, kPath, ""},
    {"ErrorPath", "Paths", K::kText, 6, kPath, ""},
    {"BackupPath", "Paths", K::kText, 8, kPath, ""},
};
constexpr const char* kEmailLocationSave[] = {"DataPath", "BackupPath", "ErrorPath"};

constexpr FieldDef kJobCardFields[] = {
    {"JobCardPrefix", "JobCard", K::kText, 5, kPath, ""},
    {"JobCardSuffix", "JobCard", K::kText, 7, kPath, ""},
    {"Default", "JobCard", K::kText, 9, kPath, ""},
};
constexpr const char* kJobCardSave[] = {"Default", "JobCardPrefix", "JobCardSuffix"};

constexpr FieldDef kPrintFields[] = {
    {"Verbosity", "Plexar", K::kInteger, 9, 3, "0"},
    {"YieldPercent", "Plexar", K::kInteger, 11, 3, "40", true},
    {"FormPath", "Paths", K::kText, 14, 0, ""},
    {"LogoPath", "Paths", K::kText, 16, 0, ""},
    {"DataPath", "Paths", K::kText, 18, 0, ""},
};
constexpr const char* kPrintSave[] = {"Verbosity", "YieldPercent", "FormPath", "LogoPath",
                                      "DataPath"};

constexpr FieldDef kCurrencyFields[] = {
    {"CurrencyComma", "Special", K::kText, 4, 0, ""},
    {"CurrencyDot", "Special", K::kText, 6, 0, ""},
    {"CurrencyCR", "Special", K::kText, 8, 0, ""},
    {"CurrencyDB", "Special", K::kText, 10, 0, ""},
    {"CurrencyLocation", "Special", K::kLocation, 12, 0, ""},
    {"CurrencySymbol", "Special", K::kText, 14, 0, ""},
    {"CurrencyParenthesis", "Special", K::kText, 16, 0, ""},
};
constexpr const char* kCurrencySave[] = {"CurrencyComma",    "CurrencyDot",    "CurrencyCR",
                                         "CurrencyDB",       "CurrencyLocation", "CurrencySymbol",
                                         "CurrencyParenthesis"};

constexpr FieldDef kCharacterFields[] = {
    {"NewlineChar", "Special", K::kText, 4, 0, ""},
    {"FieldChar", "Special", K::kText, 6, 0, ""},
    {"DictionaryNameSeparator", "Special", K::kText, 8, 0, ""},
    {"PrefixChar", "Special", K::kText, 10, 0, ""},
    {"SubstitutionPrefixChar", "Special", K::kText, 12, 0, ""},
    {"ITCPrefixChar", "Special", K::kText, 14, 0, ""},
};
constexpr const char* kCharacterSave[] = {"NewlineChar", "FieldChar", "DictionaryNameSeparator",
                                          "PrefixChar",  "SubstitutionPrefixChar",
                                          "ITCPrefixChar"};

constexpr FormDef kForms[] = {
    {FormKind::kServer, kServerProcess, "", 134, kServerFields, kServerSave, true},
    {FormKind::kNetwork, kServerProcess, "network", 136, kNetworkFields, kNetworkSave, false},
    {FormKind::kServerLocations, kServerProcess, "locations", 147, kServerLocationFields,
     kServerLocationSave, true},
    {FormKind::kEmail, kEmailProcess, "", 133, kEmailFields, kEmailSave, true},
    {FormKind::kEmailLocations, kEmailProcess, "locations", 148, kEmailLocationFields,
     kEmailLocationSave, true},
    {FormKind::kJobCard, kEmailProcess, "jobcard", 149, kJobCardFields, kJobCardSave, true},
    {FormKind::kPrint, kPrintProcess, "", 138, kPrintFields, kPrintSave, true},
    {FormKind::kCurrency, kPrintProcess, "currency", 139, kCurrencyFields, kCurrencySave, true},
    {FormKind::kCharacters, kPrintProcess, "characters", 140, kCharacterFields, kCharacterSave,
     true},
};

}  // namespace

const FormDef& form_def(FormKind kind) { return kForms[static_cast<std::size_t>(kind)]; }

const FormDef* find_form(std::string_view process, std::string_view name) {
  for (const FormDef& form : kForms) {
    if (process == form.process && name == form.name) return &form;
  }
  return nullptr;
}

const FieldDef* find_field(const FormDef& form, std::string_view key) {
  for (const FieldDef& field : form.fields) {
    if (iequals(key, field.key)) return &field;
  }
  return nullptr;
}

}  // namespace px::forms
