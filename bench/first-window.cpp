// Waits for the first window of kestrin that can be seen on DISPLAY.
//
//   first-window SECONDS
//
// Says "ready" once it watches, then the moment in microseconds since 1970. Status 1: none came.
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <poll.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

/// A window may go away between two questions about it.
int PassOver(Display*, XErrorEvent*) { return 0; }

bool IsShown(Display* display, Window window) {
  XWindowAttributes attributes{};
  XClassHint names{};
  if (!XGetWindowAttributes(display, window, &attributes) || attributes.map_state != IsViewable ||
      !XGetClassHint(display, window, &names))
    return false;
  const bool ours = names.res_name && std::string(names.res_name) == "kestrin";
  XFree(names.res_name);
  XFree(names.res_class);
  return ours;
}

/// The window that the event may have made visible, or 0.
Window Concerned(Display* display, const XEvent& event) {
  switch (event.type) {
    case CreateNotify:
      XSelectInput(display, event.xcreatewindow.window, StructureNotifyMask | VisibilityChangeMask);
      return event.xcreatewindow.window;
    case MapNotify:
      return event.xmap.window;
    case VisibilityNotify:
      return event.xvisibility.window;
    default:
      return 0;
  }
}

}  // namespace

int main(int argc, char** argv) {
  using Clock = std::chrono::steady_clock;
  Display* const display = argc == 2 ? XOpenDisplay(nullptr) : nullptr;
  if (!display) {
    std::fputs("usage: first-window SECONDS, with a display\n", stderr);
    return 1;
  }
  const auto end = Clock::now() + std::chrono::seconds(std::atoi(argv[1]));
  XSetErrorHandler(PassOver);
  XSelectInput(display, DefaultRootWindow(display), SubstructureNotifyMask);
  XSync(display, False);
  std::puts("ready");
  std::fflush(stdout);
  while (Clock::now() < end) {
    if (XPending(display) == 0) {
      pollfd ready{ConnectionNumber(display), POLLIN, 0};
      poll(&ready, 1, 1000);
      continue;
    }
    XEvent event;
    XNextEvent(display, &event);
    const Window window = Concerned(display, event);
    if (window == 0 || !IsShown(display, window)) continue;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    std::printf("%lld\n", static_cast<long long>(
                              std::chrono::duration_cast<std::chrono::microseconds>(now).count()));
    return 0;
  }
  return 1;
}
