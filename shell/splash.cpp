#include "shell/splash.h"

#include "common/file_util.h"
#include "common/ini_profile.h"
#include "config/settings.h"
#include "shell/shell_messages.h"
#include "toolkit/resources/resource_ids.h"

namespace px::shell {

tk::Rect splash_rect(tk::Toolkit& toolkit) {
  tk::Rect screen = toolkit.screen_area();
  int height = kSplashHeight + toolkit.title_bar_height() - 1;
  return {screen.x + (screen.width - kSplashWidth) / 2, screen.y + (screen.height - height) / 2,
          kSplashWidth, height};
}

std::string splash_image_path(const std::string& program_path) {
  return directory_part(program_path) + kSplashImage;
}

bool open_splash(tk::Toolkit& toolkit, Operator& op, const std::string& program_path) {
  if (ini::get_int("Options", "SplashTime", 0) < 1) return false;
  tk::Window splash = toolkit.create_window(tk::kSplashWindow, splash_handler(program_path), 0,
                                            splash_rect(toolkit));
  if (splash.exists()) return true;
  op.show(msg::kWindowNotCreated);
  return false;
}

tk::Handler splash_handler(std::string program_path) {
  return [program_path = std::move(program_path)](const tk::Event& e) {
    tk::Window w = e.window;
    switch (e.type) {
      case tk::EventType::kCreate:
        w.capture_mouse();
        w.start_timer(ini::get_int("Options", "SplashTime", 1) * 1000);
        break;
      case tk::EventType::kPaint: {
        std::string image = splash_image_path(program_path);
        if (file_readable(image)) {
          w.clear(tk::kWhite);
          w.draw_image({0, 0}, image);
        }
        break;
      }
      case tk::EventType::kMouse:
        if (e.mouse_action == tk::MouseAction::kDown) w.destroy();
        break;
      case tk::EventType::kClose:
      case tk::EventType::kTimer:
        w.destroy();
        break;
      case tk::EventType::kDestroy:
        w.release_mouse();
        break;
      default:
        break;
    }
  };
}

}  // namespace px::shell
