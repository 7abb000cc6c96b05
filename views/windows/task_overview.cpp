#include "views/windows/task_overview.h"

#include <chrono>

#include "views/instance_overview.h"
#include "views/status_queue.h"

namespace px::views {

namespace {

constexpr int kFirstBaseline = 24;
constexpr int kLineHeight = 18;
constexpr int kLeft = 10;
constexpr std::chrono::milliseconds kListingWait{250};

}  // namespace

void TaskOverview::start(tk::Window task) {
  timer_ = task.start_timer(refresh_period_ms());
  refresh(task);
}

bool TaskOverview::on_timer(tk::Window task, const tk::Event& event) {
  if (timer_ == 0 || event.timer != timer_) return false;
  if (shown()) refresh(task);
  return true;
}

void TaskOverview::view_open(tk::Window task, tk::WindowId view, bool open) {
  bool was_shown = shown();
  if (open) {
    views_.insert(view);
  } else {
    views_.erase(view);
  }
  if (shown() != was_shown) task.invalidate();
}

// Shows a finished listing; starts a new one when none is out.
void TaskOverview::refresh(tk::Window task) {
  if (!listing_.busy()) {
    plans_ = plan_status_queue();
    listing_.start(plans_);
  }
  if (auto blocks = listing_.take(kListingWait)) {
    lines_ = overview_lines(plans_, *blocks);
    task.invalidate();
  }
}

void TaskOverview::paint(tk::Window task) const {
  task.clear(tk::kWhite);
  if (!shown()) return;
  task.set_draw_font(tk::font_by_family("courier", 10));
  int baseline = kFirstBaseline;
  for (const std::string& line : lines_) {
    task.draw_text({kLeft, baseline}, line);
    baseline += kLineHeight;
  }
}

}  // namespace px::views
