#include "views/windows/status_window.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <string>

#include "toolkit/resources/catalog.h"
#include "toolkit/resources/resource_ids.h"
#include "views/background_listing.h"
#include "views/change_watch.h"
#include "views/status_queue.h"
#include "views/view_messages.h"

namespace px::views {

namespace {

// The one status and queue window of the process, by id (0: none), and
// when its list was last filled ("HH:MM:SS").
struct StatusView {
  tk::WindowId window = 0;
  std::string updated;
  std::unique_ptr<ChangeWatch> watch;  // the collector directories and status files
  long watch_timer = 0;
  BackgroundListing listing;           // the refill under way
  bool keep_selection = false;         // what the refill under way is to do
  bool change_seen = false;            // something watched changed since the last fill
  int ticks_since_fill = 0;            // watch ticks since the last fill
};

constexpr int kWatchRefillTicks = 2;

// Watches what the rows are made from, as the configuration says now.
void watch_sources(StatusView& view) {
  if (!view.watch) return;
  StatusSources sources = status_queue_sources();
  view.watch->watch(sources.directories, sources.files);
}

StatusView& the_view() {
  static StatusView view;
  return view;
}

// Shows rows in the list. With keep_selection the selected row stays
// selected when it is still listed, else the same position is selected;
// otherwise row 0 is.
void show_rows(tk::Window w, const std::vector<std::string>& rows, bool keep_selection,
               Clock& clock) {
  tk::Control list = w.control(tk::kStatusList);
  int old_index = list.selected();
  std::string old_row = old_index >= 0 ? list.row(old_index) : std::string();
  int old_top = list.top_row();
  // Rows are changed in place rather than the list cleared, and the first
  // row in view is put back after the selection moved, so the list stays
  // where the operator scrolled it to.
  list.suspend();
  const int count = static_cast<int>(rows.size());
  const int before = list.count();
  for (int i = 0; i < count; ++i) {
    if (i >= before) {
      list.add(rows[static_cast<size_t>(i)]);
    } else if (list.row(i) != rows[static_cast<size_t>(i)]) {
      list.set_row(i, rows[static_cast<size_t>(i)]);
    }
  }
  for (int i = before - 1; i >= count; --i) list.remove(i);
  list.resume();
  int index = 0;
  if (keep_selection && old_index >= 0) {
    auto same = std::find(rows.begin(), rows.end(), old_row);
    index = same != rows.end() ? static_cast<int>(same - rows.begin())
                               : std::min(old_index, static_cast<int>(rows.size()) - 1);
  }
  if (!rows.empty()) list.select(std::max(index, 0));
  if (keep_selection) list.set_top_row(old_top);
  std::tm now = clock.now();
  char stamp[16];
  std::strftime(stamp, sizeof stamp, "%H:%M:%S", &now);
  the_view().updated = stamp;
  the_view().ticks_since_fill = 0;
  the_view().change_seen = false;
  w.invalidate();
}

// Shows the rows of a finished listing, waiting for it at most wait.
void show_finished(tk::Window w, Clock& clock, std::chrono::milliseconds wait = {}) {
  StatusView& view = the_view();
  if (auto blocks = view.listing.take(wait)) show_rows(w, rows_of(*blocks), view.keep_selection, clock);
}

// Refills the list: the settings are read here, the files are listed on a
// thread of their own. A listing that takes longer than a moment is shown
// when it ends (the watch timer looks); while one is out, no other starts.
void fill(tk::Window w, bool keep_selection, Clock& clock) {
  StatusView& view = the_view();
  if (view.listing.busy()) {
    view.keep_selection = view.keep_selection && keep_selection;
    return;
  }
  w.toolkit().show_busy_cursor();
  view.keep_selection = keep_selection;
  view.listing.start(plan_status_queue());
  show_finished(w, clock, std::chrono::milliseconds(kListingWaitMs));
}

// Pixels per resource unit, each way, as the back end built the "Close"
// button from its definition.
struct Scale {
  double x = 1;
  double y = 1;
};

Scale unit_scale(tk::Window w) {
  Scale scale;
  const tk::WindowDef* def = tk::find_window_def(tk::kStatusQueueWindow);
  tk::Rect button = w.control(tk::kStatusClose).rect();
  for (const tk::ControlDef& c : def != nullptr ? def->controls : std::span<const tk::ControlDef>{}) {
    if (c.id != tk::kStatusClose || c.box.width <= 0 || c.box.height <= 0) continue;
    scale.x = static_cast<double>(button.width) / c.box.width;
    scale.y = static_cast<double>(button.height) / c.box.height;
  }
  return scale;
}

// The list takes the client area less 50 units at the right and 5 at the
// bottom; "Close" sits 10 units right of it, its top 55 units above the
// list's vertical middle.
void place_controls(tk::Window w, tk::Size client) {
  Scale unit = unit_scale(w);
  auto across = [&](int units) { return static_cast<int>(units * unit.x); };
  auto down = [&](int units) { return static_cast<int>(units * unit.y); };
  tk::Control list = w.control(tk::kStatusList);
  tk::Rect area = list.rect();
  area.width = std::max(1, client.width - across(50) - area.x);
  area.height = std::max(1, client.height - down(5) - area.y);
  list.set_rect(area);
  tk::Control close = w.control(tk::kStatusClose);
  tk::Rect button = close.rect();
  button.x = area.x + area.width + across(10);
  button.y = area.y + area.height / 2 - down(55);
  close.set_rect(button);
}

void handle(const ViewHost& host, const tk::Event& e) {
  tk::Window w = e.window;
  switch (e.type) {
    case tk::EventType::kCreate:
      host.view_created(w);
      // The header is drawn by paint; the static keeps its text but would
      // cover the drawing.
      w.control(tk::kStatusHeader).set_visible(false);
      w.control(tk::kStatusList).set_font(tk::font_by_family("courier", 10));
      the_view() = {};
      the_view().window = w.id();
      w.start_timer(refresh_period_ms());
      the_view().watch = std::make_unique<ChangeWatch>();
      watch_sources(the_view());
      the_view().watch_timer = w.start_timer(kWatchPeriodMs);
      fill(w, false, host.clock);
      w.control(tk::kStatusList).focus();
      break;
    case tk::EventType::kDestroy:
      host.view_destroyed(w);
      if (the_view().window == w.id()) the_view() = {};
      break;
    case tk::EventType::kResize:
      place_controls(w, e.size);
      break;
    case tk::EventType::kPaint:
      w.clear(tk::kLightGrey);
      w.set_draw_font(tk::font_by_family("courier", 10));
      w.draw_text({5, 20}, status_header(the_view().updated));
      break;
    case tk::EventType::kClose:
      w.destroy();
      break;
    case tk::EventType::kControl:
      if (e.is_control(tk::kStatusClose, tk::Notice::kClicked)) w.destroy();
      break;
    case tk::EventType::kTimer:
      if (e.timer != the_view().watch_timer) {
        fill(w, true, host.clock);
        watch_sources(the_view());
      } else if (the_view().listing.busy()) {
        show_finished(w, host.clock);
      } else {
        // A queue that never rests is refilled at most every
        // kWatchRefillTicks ticks, so a big one does not keep the window busy.
        StatusView& view = the_view();
        view.change_seen = (view.watch && view.watch->changed()) || view.change_seen;
        if (view.change_seen && ++view.ticks_since_fill >= kWatchRefillTicks) fill(w, true, host.clock);
      }
      break;
    default:
      break;
  }
}

}  // namespace

std::string status_header(const std::string& updated) {
  std::string header = kStatusHeader;
  if (!updated.empty()) header += "    last updated " + updated;
  return header;
}

tk::Window status_queue_window(tk::Toolkit& toolkit) {
  tk::Window w(&toolkit, the_view().window);
  return w.exists() && w.resource_id() == tk::kStatusQueueWindow ? w : tk::Window();
}

tk::Window show_status_queue(const ViewHost& host) {
  if (host.listing_cache && !the_view().listing.busy()) {
    the_view().listing.share_cache(host.listing_cache);
  }
  tk::Window open = status_queue_window(host.toolkit);
  if (open.exists()) {
    fill(open, true, host.clock);
    open.control(tk::kStatusList).focus();
    return open;
  }
  tk::Window w = host.toolkit.create_window(
      tk::kStatusQueueWindow, [host](const tk::Event& e) { handle(host, e); });
  if (w.id() == 0) {
    host.op.show(msg::kWindowNotOpened);
    return tk::Window();
  }
  return status_queue_window(host.toolkit);
}

}  // namespace px::views
