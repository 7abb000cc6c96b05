// Every configuration dialog on the Qt back end under a private X server,
// opened on a small installation so that its fields are filled, and a PNG
// of each in PX_SCREENSHOT_DIR for review. Each dialog is shot and closed
// from a timer while it runs modally.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <filesystem>
#include <functional>
#include <memory>

#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/dialogs/agent_dialogs.h"
#include "config/dialogs/configure_dialog.h"
#include "config/dialogs/instance_dialogs.h"
#include "config/dialogs/select_directory_dialog.h"
#include "config/dialogs/server_dialogs.h"
#include "config/recording_operator.h"
#include "tests/support/test_dir.h"
#include "toolkit/qt/qt_backend.h"

namespace px::dialogs {
namespace {

tk::Toolkit* the_toolkit = nullptr;

class ConfigDialogsUnderX : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(std::getenv("DISPLAY"), nullptr) << "run under xvfb-run";
    std::string text = read_file(PX_SOURCE_DIR "/demo/pxcntrl.ini").value_or("");
    std::size_t at = text.find("\nInstall=\n");
    if (at != std::string::npos) text.replace(at, 10, "\nInstall=" + dir.file("install.ini") + "\n");
    ini::flush_cache();
    ini::set_file(dir.write("pxcntrl.ini", text));
    messages::reset();
    messages::init("pxcntrl");
    std::filesystem::create_directories(dir.file("north/data"));
    std::filesystem::create_directories(dir.file("north/errors"));
    config = dir.write("north.ini",
                       "[Plexar]\nWindowTitle=Nexa North - orders and invoices\nNode=here\n"
                       "LogFile=" + dir.file("north/pxserver.log") + "\nVerbosity=-10\n"
                       "[Processes]\nPXSERVER=Plexar Nexa Server\nPXEMIO=Plexar E-Mail Agent\n"
                       "PXMERGE=Plexar Print Agent\n[PXEMIO]\nIniFileName=" +
                           dir.file("pxemio.ini") + "\n[PXMERGE]\nIniFileName=" +
                           dir.file("pxmerge.ini") + "\n[Options]\nPauseTime=120\n"
                           "FileSpec=*.DAT\nBackupFiles=Yes\n[Paths]\nDataPath=" +
                           dir.file("north/data") + "\nErrorPath=" + dir.file("north/errors") + "\n");
    dir.write("pxemio.ini",
              "[Options]\nCycleTime=20\nSeconds=Yes\nLogToFile=Yes\nEMailSystem=VIM\n"
              "[PxEmio-VIM]\nMailBoxID=orders\nPassword=north1\nPostOffice=/srv/po\n"
              "[JobCard]\nJobCardPrefix=^job\nDefault=ACKNOWLEDGE\n");
    dir.write("pxmerge.ini",
              "[Plexar]\nVerbosity=0\n[Paths]\nFormPath=/srv/forms\n[Special]\nCurrencyComma=,\n"
              "CurrencyDot=.\nCurrencyLocation=Left\nCurrencySymbol=$\nNewlineChar=~\n");
    dir.write("install.ini", "[Plexar]\nNode=here\n[Configuration]\nnorth=" + config + "\n");
  }

  // Runs open, shooting the modal dialog it shows into name and closing it.
  void shoot(const std::string& name, const std::function<void()>& open) {
    bool shot = false;
    QTimer::singleShot(400, [&] {
      QWidget* dialog = QApplication::activeModalWidget();
      if (dialog != nullptr) {
        std::filesystem::create_directories(PX_SCREENSHOT_DIR);
        shot = dialog->grab().save(QString::fromStdString(PX_SCREENSHOT_DIR "/" + name + ".png"));
      }
      the_toolkit->focused_top_window().destroy();
    });
    open();
    EXPECT_TRUE(shot) << name;
  }

  TestDir dir;
  std::string config;
  RecordingOperator op;
  ConfigContext context{*the_toolkit, op, "north"};
};

TEST_F(ConfigDialogsUnderX, EveryConfigurationDialogOpensFilled) {
  Instance north{"north", "Nexa North", config};
  shoot("config_123_configure", [&] { run_configure_dialog(context, north, false); });
  shoot("config_121_instances", [&] { run_instance_config_dialog(context); });
  shoot("config_134_server", [&] { run_server_dialog(context, config); });
  shoot("config_136_network", [&] { run_network_dialog(context, config); });
  shoot("config_147_server_locations", [&] { run_server_locations_dialog(context, config); });
  shoot("config_133_email", [&] { run_email_dialog(context, config); });
  shoot("config_148_email_locations", [&] { run_email_locations_dialog(context, config); });
  shoot("config_149_job_card", [&] { run_job_card_dialog(context, config); });
  shoot("config_138_print", [&] { run_print_dialog(context, config); });
  shoot("config_139_currency", [&] { run_currency_dialog(context, config); });
  shoot("config_140_characters", [&] { run_characters_dialog(context, config); });
  shoot("config_150_select_directory", [&] {
    select_directory(*the_toolkit, op, dir.file("north"), forms::system_drives());
  });
  EXPECT_TRUE(op.shown().empty());
}

}  // namespace
}  // namespace px::dialogs

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  std::unique_ptr<px::tk::Toolkit> toolkit = px::tk::make_qt_toolkit(argc, argv);
  px::dialogs::the_toolkit = toolkit.get();
  return RUN_ALL_TESTS();
}
