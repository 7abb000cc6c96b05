// pxctl --help: the Usage section of the INI file when it has lines, else a
// summary of the commands.
#include <cstdio>

#include "cli/cli.h"
#include "common/messages.h"

namespace px::cli {

namespace {

const char* const kSummary =
    "Usage: pxctl [-a options] [@file] [--instance NAME] COMMAND ...\n"
    "\n"
    "Commands:\n"
    "  ini get FILE SECTION KEY [DEFAULT]   print a value of an INI file\n"
    "  ini keys FILE SECTION                print the keys of a section\n"
    "  ini set FILE SECTION KEY VALUE       set a key\n"
    "  ini delete FILE SECTION [KEY]        delete a key, or every key of a section\n"
    "  ini map QUALIFIER PATH               map a path through the directory map\n"
    "  msg N [ARG...]                       show numbered message N with arguments\n"
    "  args ARG...                          print the arguments after initialisation\n"
    "  jmd check FILE                       load a JMD; print the row count of each table\n"
    "  jmd save IN OUT                      load IN and write it to OUT as the console saves\n"
    "  jmd list FILE jobs|printers|tasks|memory   print a table's rows in sort order\n"
    "\n"
    "Server control, on the default instance or --instance NAME:\n"
    "  instances                            list instances: name, title, configuration file\n"
    "  state                                print the server state (0-3 and its name)\n"
    "  pause | resume | shutdown | reload-jobs   send that control job and wake the server\n"
    "  reload-printer (--all-printers | --printer NAME ...) (--all-forms | --form FILE)\n"
    "  start | start-email | stop-email     start the server or E-mail Agent, stop the agent\n"
    "  kick [--email]                       wake the server (or its E-mail Agent)\n"
    "  location                             print the location word (1 net, 2 startable,\n"
    "                                       4 other node, 8 remote access)\n"
    "  jmd-save                             save the JMD, keeping the old file as .JBK\n"
    "\n"
    "Configuration, on the default instance or --instance NAME:\n"
    "  processes                            the processes of the instance\n"
    "  config show PROCESS [FORM]           print a form's fields as its dialog shows them\n"
    "  config set PROCESS [FORM] KEY=VALUE ... [--dry-run] [--force]\n"
    "                                       type values into a form and press OK\n"
    "      FORM: network, locations (PXSERVER); locations, jobcard (PXEMIO);\n"
    "            currency, characters (PXMERGE)\n"
    "  instances add NAME TITLE CONFIG      add an instance\n"
    "  instances edit NAME [--title TEXT] [--config FILE]\n"
    "  instances default NAME               make an instance the default\n"
    "  instances remove NAME                take an instance out of the list\n"
    "\n"
    "  --help                               this text\n"
    "\n"
    "Common options (value written directly behind the option):\n"
    "  -aiiFILE  INI file      -allFILE  log file (stdout, stderr)\n"
    "  -asnNAME  server name   -arxFILE  response file   -arfFORMAT  field|basic\n"
    "  -adtN     integer option\n"
    "  @FILE     read more arguments from FILE\n"
    "\n"
    "Exit status: 0 success, 1 the operation failed, 2 usage error.\n";

}  // namespace

int run_help(const Invocation&) {
  if (messages::print_usage() == 0) std::fputs(kSummary, stdout);
  return kExitOk;
}

}  // namespace px::cli
