// Deterministic JMD files for the JMD benchmark: for n job rows, n / 20
// printers, n / 20 tasks and n / 40 managed-memory entries. Jobs come in
// steps of two rows per form; forms, printers and tasks appear in a shuffled
// order, so a load never meets its keys sorted, and names mix their case.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace px::bench {

struct JmdSizes {
  long jobs = 0;
  long printers = 0;
  long tasks = 0;
  long memory = 0;
};

inline JmdSizes jmd_sizes(long jobs) { return {jobs, jobs / 20, jobs / 20, jobs / 40}; }

// Position k of a fixed shuffle of 0..count-1 (7919 is a prime that divides
// none of the counts used).
inline long shuffled(long k, long count) { return (k * 7919 + 13) % count; }

inline std::string numbered(const char* prefix, long number, int digits) {
  char text[32];
  std::snprintf(text, sizeof text, "%s%0*ld", prefix, digits, number);
  return text;
}

inline long form_count(long jobs) { return (jobs + 1) / 2; }

// The name of form k, in one of three spellings.
inline std::string form_name(long k) {
  static const char* const kPrefixes[] = {"Form", "FORM", "form"};
  return numbered(kPrefixes[k % 3], k, 7);
}

inline std::string printer_name(long k) { return numbered(k % 2 ? "Pr" : "PR", k, 6); }
inline std::string printer_id(long k) { return numbered("PI", k, 6); }
inline std::string task_id(long k) { return numbered(k % 2 ? "tk" : "TK", k, 6); }

// The JMD text as the console writes it, records in generation order.
inline std::string make_jmd(long jobs) {
  JmdSizes n = jmd_sizes(jobs);
  std::string text = "# Plexar Job Management Database (JMD) file\n";
  text.reserve(static_cast<size_t>(jobs) * 120 + static_cast<size_t>(n.tasks) * 80);
  char line[512];
  long forms = form_count(jobs);
  for (long i = 0; i < jobs; ++i) {
    long form = shuffled(i / 2, forms);
    long printer = n.printers ? (form * 31 + i) % n.printers : 0;
    long task = n.tasks ? form % n.tasks : 0;
    std::snprintf(line, sizeof line, "!f %s %s /forms/f%07ld.mdf %s %ld %c %s %c %c %c %s\n",
                  form_name(form).c_str(), printer_name(printer).c_str(), form,
                  i % 5 == 0 ? "*" : "pre.ps", i % 100, i % 2 ? 'Y' : 'N', task_id(task).c_str(),
                  i % 3 ? 'Y' : 'N', 'N', i % 7 ? 'C' : 'S',
                  i % 2 ? "\"step two of the form\"" : "first");
    text += line;
  }
  for (long j = 0; j < n.printers; ++j) {
    long p = shuffled(j, n.printers);
    std::snprintf(line, sizeof line, "!p %s %s /dev/usb/lp%ld \"-o raw -q %ld\" %ld \"room %ld\"\n",
                  printer_name(p).c_str(), printer_id(p).c_str(), p % 16, p % 8, p % 10, p % 300);
    text += line;
  }
  for (long j = 0; j < n.tasks; ++j) {
    long t = shuffled(j, n.tasks);
    std::snprintf(line, sizeof line,
                  "!x %s PxMergeTask /opt/plexar/bin/pxmerge \"-job %s -mode batch\" *\n",
                  task_id(t).c_str(), task_id(t).c_str());
    text += line;
  }
  for (long j = 0; j < n.memory; ++j) {
    long p = shuffled(j, n.memory);
    std::snprintf(line, sizeof line, "!m %s %ld \"font cache\"\n", printer_id(p).c_str(),
                  1024 + (p % 64) * 256);
    text += line;
  }
  return text;
}

}  // namespace px::bench
