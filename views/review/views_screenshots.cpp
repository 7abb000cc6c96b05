// px_views_screenshots FOLDER: the monitoring windows with real contents,
// on the Qt back end, for people reviewing their look (run under xvfb-run;
// scripts/screenshots does). A small installation is laid out in a
// temporary directory: two instances with queued, control and rejected
// files, an E-mail Agent queue, a log to page and a log to show whole.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>

#include "common/file_util.h"
#include "common/ini_profile.h"
#include "common/messages.h"
#include "config/instances.h"
#include "config/recording_operator.h"
#include "toolkit/qt/qt_backend.h"
#include "toolkit/resources/resource_ids.h"
#include "views/windows/file_windows.h"
#include "views/windows/log_window.h"
#include "views/windows/status_window.h"

namespace {

std::string g_root;

std::string at(const std::string& relative) { return g_root + "/" + relative; }

void write(const std::string& relative, const std::string& text, time_t minutes_ago = 0) {
  std::ofstream(at(relative), std::ios::binary) << text;
  if (minutes_ago > 0) {
    time_t when = std::time(nullptr) - minutes_ago * 60;
    struct timespec times[2] = {{when, 0}, {when, 0}};
    utimensat(AT_FDCWD, at(relative).c_str(), times, 0);
  }
}

std::string instance(const std::string& name, const std::string& title) {
  for (const char* d : {"", "/data", "/errors", "/logs", "/mail", "/mail-errors"}) {
    ::mkdir(at(name + d).c_str(), 0755);
  }
  write(name + "/pxemio.ini", "[Plexar]\nLogFile=" + at(name + "/logs/pxemio.log") +
                                  "\n[Paths]\nDataPath=" + at(name + "/mail") +
                                  "\nErrorPath=" + at(name + "/mail-errors") + "\n");
  write(name + "/pxserver.ini",
        "[Plexar]\nWindowTitle=" + title + "\nStatusFile=" + at(name + "/pxserver.sts") +
            "\nLogFile=" + at(name + "/logs/pxserver.log") +
            "\n[Processes]\nPXSERVER=Nexa Server\nPXEMIO=E-Mail Agent\n[PXEMIO]\nIniFileName=" +
            at(name + "/pxemio.ini") + "\n[Options]\nFileSpec=*.DAT;*.TXT\n[Paths]\nDataPath=" +
            at(name + "/data") + "\nErrorPath=" + at(name + "/errors") + "\n");
  return at(name + "/pxserver.ini");
}

void lay_out() {
  std::string console = px::read_file(PX_SOURCE_DIR "/demo/pxcntrl.ini").value_or("");
  console.replace(console.find("\nInstall=\n"), 10, "\nInstall=" + at("plexar.ini") + "\n");
  write("pxcntrl.ini", console);
  std::string north = instance("north", "Nexa North - orders and invoices");
  std::string south = instance("south", "Nexa South - statements and pay slips");
  write("plexar.ini", "[Configuration]\nnorth=" + north + "\nsouth=" + south + "\n");
  write("north/pxserver.sts", "261124 09:14:03 pxserver: Nexa is running\n");
  write("south/pxserver.sts", "261124 08:00:00 pxserver: Nexa is paused\n");
  const char* orders[] = {"ORD10004.DAT", "ORD10001.DAT", "ORD10003.DAT", "ORD10002.DAT"};
  for (int i = 0; i < 4; ++i) write(std::string("north/data/") + orders[i], "^job INVOICE\n", 20 - i * 4);
  write("north/data/pxctrl01.msg", "^job PXCNTRLJOB\n", 2);
  write("north/data/stopserv.msg", "^job PXCNTRLJOB\n", 1);
  write("north/errors/ORD09977.DAT",
        "^jbo INVOICE\n^field CustomerName\nBlue Ridge Farms\n^field Amount\n1,280.00\n");
  write("north/errors/SCN00042.DAT", "scanned page without a job line\n");
  write("north/mail/MAIL0102.dat", "x", 5);
  write("north/mail/MAIL0101.dat", "x", 9);
  write("north/mail/stopread.msg", "", 1);
  std::string log;
  for (int i = 0; i < 20000; ++i) {
    char line[160];
    std::snprintf(line, sizeof line,
                  "2611%02d %02d:%02d:%02d pxserver: [1229]Transaction file ORD%05d.DAT collected "
                  "for job INVOICE\n", 20 + i / 5000, (i / 3600) % 24, (i / 60) % 60, i % 60, i);
    log += line;
  }
  write("north/logs/pxserver.log", log);
  write("north/logs/pxemio.log",
        "261124 07:59:58 pxemio: [1231]E-mail Agent started for instance north\n"
        "261124 08:00:18 pxemio: [1232]Mail file MAIL0097.dat read and passed to Nexa as "
        "/srv/plexar/north/data/MAIL0097.dat, with a line long enough to be wrapped by the view\n"
        "261124 08:00:38 pxemio: [1235]Mail file MAIL0099.dat has no job line\n");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: px_views_screenshots FOLDER   (under xvfb-run)\n");
    return 2;
  }
  std::string folder = argv[1];
  ::mkdir(folder.c_str(), 0755);
  char root[] = "/tmp/pxviews.XXXXXX";
  if (mkdtemp(root) == nullptr) return 1;
  g_root = root;
  lay_out();
  px::ini::set_file(at("pxcntrl.ini"));
  px::messages::init("pxcntrl");
  px::ini::write_string("Options", "LogLineWrap", "90", at("pxcntrl.ini"));
  px::ini::write_string("Options", "LogLineIndent", "16", at("pxcntrl.ini"));
  px::RecordingOperator op;
  px::select_default_instance(op);

  auto toolkit = px::tk::make_qt_toolkit(argc, argv);
  px::SystemClock clock;
  px::views::ViewHost host{*toolkit, op, clock, {}, {}, {}, {}};
  bool ok = true;
  auto shoot = [&](px::tk::Window w, const std::string& name) {
    px::tk::run_events_for(200);
    std::string path = folder + "/" + name + ".png";
    bool saved = w.exists() && px::tk::save_window_image(*toolkit, w, path);
    if (saved) std::printf("%s\n", path.c_str());
    w.destroy();
    ok &= saved;
  };
  shoot(px::views::show_status_queue(host), "view_137_status_and_queue");
  shoot(px::views::open_rejects(host, false), "view_142_rejects");
  shoot(px::views::open_reject_file(host, false, "ORD09977.DAT"), "view_120_rejected_file");
  shoot(px::views::open_email_queue(host), "view_144_email_queue");
  shoot(px::views::open_process_log(host, "PXSERVER"), "view_120_log_paged");
  shoot(px::views::open_email_log(host), "view_120_log_whole_wrapped");
  for (const auto& shown : op.shown()) std::fprintf(stderr, "message %d shown\n", shown.number);
  std::filesystem::remove_all(g_root);
  return ok && op.shown().empty() ? 0 : 1;
}
