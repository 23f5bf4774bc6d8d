// Waits for the first window of kestrin that can be seen on DISPLAY.
//
//   first-window SECONDS [TITLE]
//
// Says "ready" once it watches, then the moment in microseconds since 1970. Status 1: none came.
// With a title, waits for the window whose title begins so, and until something is painted in it.
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

bool IsShown(Display* display, Window window, const std::string& title) {
  XWindowAttributes attributes{};
  XClassHint names{};
  if (!XGetWindowAttributes(display, window, &attributes) || attributes.map_state != IsViewable ||
      !XGetClassHint(display, window, &names))
    return false;
  const bool ours = names.res_name && std::string(names.res_name) == "kestrin";
  XFree(names.res_name);
  XFree(names.res_class);
  char* name = nullptr;
  if (!ours || title.empty()) return ours;
  if (XFetchName(display, window, &name) == 0) return false;
  const bool wanted = std::string(name).starts_with(title);
  XFree(name);
  return wanted;
}

/// Whether the row in the middle of the window has more than one colour.
bool IsPainted(Display* display, Window window) {
  XWindowAttributes attributes{};
  if (!XGetWindowAttributes(display, window, &attributes)) return false;
  const auto width = static_cast<unsigned>(attributes.width);
  XImage* const row =
      XGetImage(display, window, 0, attributes.height / 2, width, 1, AllPlanes, ZPixmap);
  if (!row) return false;
  bool painted = false;
  for (int x = 1; x < attributes.width && !painted; ++x)
    painted = XGetPixel(row, x, 0) != XGetPixel(row, 0, 0);
  XDestroyImage(row);
  return painted;
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
  Display* const display = argc == 2 || argc == 3 ? XOpenDisplay(nullptr) : nullptr;
  if (!display) {
    std::fputs("usage: first-window SECONDS [TITLE], with a display\n", stderr);
    return 1;
  }
  const std::string title = argc == 3 ? argv[2] : "";
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
    if (window == 0 || !IsShown(display, window, title)) continue;
    while (!title.empty() && !IsPainted(display, window) && Clock::now() < end) poll(nullptr, 0, 1);
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    std::printf("%lld\n", static_cast<long long>(
                              std::chrono::duration_cast<std::chrono::microseconds>(now).count()));
    return 0;
  }
  return 1;
}
