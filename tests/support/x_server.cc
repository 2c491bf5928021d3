#include "tests/support/x_server.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <stdexcept>

#include "tests/support/files.h"

namespace gromlit::testing {
namespace {

// Reads one line from a pipe; empty at the deadline.
std::string ReadLine(int fd, std::chrono::milliseconds deadline) {
  std::string line;
  const auto end = std::chrono::steady_clock::now() + deadline;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        end - std::chrono::steady_clock::now());
    pollfd waiting{fd, POLLIN, 0};
    if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) <= 0) return "";
    char c;
    if (read(fd, &c, 1) != 1) return "";
    if (c == '\n') return line;
    line += c;
  }
}

}  // namespace

XServer::XServer(const std::string& screen, std::vector<std::string> more) {
  std::vector<std::string> argv = {"Xvfb", "-screen", "0", screen, "-nolisten", "tcp", "-noreset"};
  argv.insert(argv.end(), more.begin(), more.end());
  Start(argv);
}

XServer::XServer(const XServer& host, const std::string& size) {
  Start({"Xephyr", "-screen", size, "-nolisten", "tcp", "-noreset"}, {"DISPLAY=" + host.name()});
}

void XServer::Start(std::vector<std::string> argv, const std::vector<std::string>& environment) {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  argv.insert(argv.begin() + 1, {"-displayfd", std::to_string(ends[1])});
  process_ = std::make_unique<Process>(argv, "/dev/null", environment);
  close(ends[1]);
  const std::string number = ReadLine(ends[0], std::chrono::seconds(30));
  close(ends[0]);
  if (number.empty()) throw std::runtime_error(argv[0] + " did not start");
  name_ = ":" + number;
  setenv("DISPLAY", name_.c_str(), 1);
}

XServer::~XServer() {
  unsetenv("DISPLAY");
  process_->Kill(SIGTERM);
  process_->Wait(std::chrono::seconds(5));
}

Player::Player(const std::string& display) : display_(XOpenDisplay(display.c_str())) {
  if (display_ == nullptr) throw std::runtime_error("cannot open " + display);
  XTestGrabControl(display_, True);
}

Player::~Player() {
  if (display_ != nullptr) XCloseDisplay(display_);
}

void Player::MoveTo(int x, int y) {
  XTestFakeMotionEvent(display_, -1, x, y, CurrentTime);
  XSync(display_, False);
}

void Player::Press(int button) {
  XTestFakeButtonEvent(display_, static_cast<unsigned>(button), True, CurrentTime);
  XSync(display_, False);
}

void Player::Release(int button) {
  XTestFakeButtonEvent(display_, static_cast<unsigned>(button), False, CurrentTime);
  XSync(display_, False);
}

void Player::Click(int button) {
  Press(button);
  Release(button);
}

void Player::KeyDown(KeySym key) {
  XTestFakeKeyEvent(display_, XKeysymToKeycode(display_, key), True, CurrentTime);
  XSync(display_, False);
}

void Player::KeyUp(KeySym key) {
  XTestFakeKeyEvent(display_, XKeysymToKeycode(display_, key), False, CurrentTime);
  XSync(display_, False);
}

void Player::Type(KeySym key) {
  KeyDown(key);
  KeyUp(key);
}

unsigned long Player::Pixel(int x, int y) {
  XImage* image = XGetImage(display_, root(), x, y, 1, 1, AllPlanes, ZPixmap);
  if (image == nullptr) return ~0UL;
  const unsigned long pixel = XGetPixel(image, 0, 0) & 0xffffff;
  XDestroyImage(image);
  return pixel;
}

Player::Pointer Player::Where() {
  Window rootwin;
  Pointer at{};
  int wx;
  int wy;
  XQueryPointer(display_, root(), &rootwin, &at.child, &at.x, &at.y, &wx, &wy, &at.state);
  return at;
}

bool Player::CanGrabPointer() {
  const int status = XGrabPointer(display_, root(), False, ButtonPressMask, GrabModeAsync,
                                  GrabModeAsync, None, None, CurrentTime);
  if (status == GrabSuccess) XUngrabPointer(display_, CurrentTime);
  XSync(display_, False);
  return status == GrabSuccess;
}

// Copies, for the hint has no constant texts.
// cppcheck-suppress passedByValue
void SetClass(Display* display, Window window, std::string classpart, std::string name) {
  XClassHint hint{name.data(), classpart.data()};
  XSetClassHint(display, window, &hint);
}

namespace {

// The screen's size as it is now; Xlib's own numbers stay those of the connection's start.
XWindowAttributes ScreenOf(Display* display) {
  XWindowAttributes attributes{};
  XGetWindowAttributes(display, DefaultRootWindow(display), &attributes);
  return attributes;
}

}  // namespace

Picture TakeScreen(Display* display, int x, int y, int width, int height) {
  const XWindowAttributes screen = ScreenOf(display);
  const int left = std::max(x, 0);
  const int top = std::max(y, 0);
  Picture picture;
  picture.width = std::min(x + width, screen.width) - left;
  picture.height = std::min(y + height, screen.height) - top;
  if (picture.width <= 0 || picture.height <= 0) return {};
  XImage* image = XGetImage(display, DefaultRootWindow(display), left, top,
                            static_cast<unsigned>(picture.width),
                            static_cast<unsigned>(picture.height), AllPlanes, ZPixmap);
  if (image == nullptr) return {};
  picture.pixels.reserve(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
  for (int row = 0; row < picture.height; row++)
    for (int column = 0; column < picture.width; column++)
      picture.pixels.push_back(XGetPixel(image, column, row) & 0xffffff);
  XDestroyImage(image);
  return picture;
}

void SaveScreen(Display* display, const std::string& path) {
  const XWindowAttributes screen = ScreenOf(display);
  WriteText(path, PngOf(TakeScreen(display, 0, 0, screen.width, screen.height)));
}

}  // namespace gromlit::testing
