// Events as the back ends make them, one function per kind; the Event's
// window is filled in when it is delivered.
#pragma once

#include "toolkit/toolkit.h"

namespace px::tk {

inline Event make_event(EventType type) {
  Event e;
  e.type = type;
  return e;
}

inline Event resize_event(Size size) {
  Event e = make_event(EventType::kResize);
  e.size = size;
  return e;
}

inline Event command_event(int item) {
  Event e = make_event(EventType::kCommand);
  e.command = item;
  return e;
}

inline Event control_event(int control, Notice notice, ScrollAction action = ScrollAction::kNone,
                           int position = 0) {
  Event e = make_event(EventType::kControl);
  e.control = control;
  e.notice = notice;
  e.scroll = action;
  e.position = position;
  return e;
}

inline Event key_event(int control, Key key) {
  Event e = control_event(control, Notice::kKey);
  e.key = key;
  return e;
}

inline Event timer_event(long timer) {
  Event e = make_event(EventType::kTimer);
  e.timer = timer;
  return e;
}

inline Event mouse_event(Point at, MouseAction action, MouseButton button) {
  Event e = make_event(EventType::kMouse);
  e.mouse = at;
  e.mouse_action = action;
  e.mouse_button = button;
  return e;
}

inline Event quit_event(bool query) {
  Event e = make_event(EventType::kQuit);
  e.query = query;
  return e;
}

inline Event help_event(int focused_control) {
  Event e = make_event(EventType::kHelp);
  e.control = focused_control;
  return e;
}

inline Event user_event(int user_id) {
  Event e = make_event(EventType::kUser);
  e.user_id = user_id;
  return e;
}

}  // namespace px::tk
