// pxctl --help: the Usage section of the INI file when it has lines, else a
// summary of the commands.
#include <cstdio>

#include "cli/cli.h"
#include "common/messages.h"

namespace px::cli {

namespace {

const char* const kSummary =
    "Usage: pxctl [-a options] [@file] [--instance NAME] COMMAND ...\n"
    "       pxctl [-a options] [@file] COMMAND ... --instance NAME ...\n"
    "\n"
    "--instance NAME goes before the command word, or once among its words;\n"
    "not among the words of ini, msg, args and jmd, which are their own.\n"
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
    "  jmd show FILE LIST [--page N]        a list's header and rows as its window shows them\n"
    "  jmd show FILE steps JOB [--page N]   the steps of a job as the job window shows them\n"
    "  jmd add FILE LIST COLUMN=VALUE ...   add a task, printer or managed-memory row\n"
    "  jmd edit FILE LIST KEY COLUMN=VALUE ...   edit one\n"
    "  jmd delete FILE LIST KEY ...         delete rows (a job with all its steps)\n"
    "  jmd new-job FILE JOB                 check a new job name\n"
    "  jmd add-step FILE JOB [--before N] COLUMN=VALUE ...   add a step\n"
    "  jmd edit-step FILE JOB N COLUMN=VALUE ...   edit step N\n"
    "  jmd delete-step FILE JOB N ...       delete steps\n"
    "  jmd move-step FILE JOB FIRST LAST up|down   move steps by one\n"
    "  jmd copy-job FILE FROM TO            copy a job's steps to a new job\n"
    "                                       (LIST: jobs, tasks, printers, memory)\n"
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
    "Monitoring, on the default instance or --instance NAME:\n"
    "  status                               every instance's status line and waiting files\n"
    "  queue --email                        the E-mail Agent's queue\n"
    "  rejects [--email]                    the rejected files of the server (or E-mail Agent)\n"
    "  log [--process SECTION | --email] [--line N] [--follow]\n"
    "                                       the log as the log view opens on it, the 30 lines\n"
    "                                       from line N, or follow it as it grows\n"
    "  reject-file [--email] NAME           the lines of a rejected file\n"
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
    "  audit [--since TIME]                 the operator audit log (AuditLog in Options),\n"
    "                                       from TIME (YYYY-MM-DD[THH:MM[:SS]][Z]) on\n"
    "\n"
    "  --help                               this text\n"
    "\n"
    "Common options (value written directly behind the option):\n"
    "  -aiiFILE  INI file      -allFILE  log file (stdout, stderr)\n"
    "  -asnNAME  server name   -arxFILE  response file   -arfFORMAT  field|basic\n"
    "  -adtN     integer option   -aro  read-only: refuse every change (exit 1)\n"
    "  @FILE     read more arguments from FILE\n"
    "\n"
    "Exit status: 0 success, 1 the operation failed, 2 usage error.\n";

}  // namespace

int run_help(const Invocation&) {
  if (messages::print_usage() == 0) std::fputs(kSummary, stdout);
  return kExitOk;
}

}  // namespace px::cli
