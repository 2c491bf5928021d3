#include "tests/support/x_server.h"

#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <thread>

namespace gromlit::testing {
namespace {

std::vector<char*> Pointers(std::vector<std::string>& words) {
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  return argv;
}

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
  int pipefd[2];
  if (pipe(pipefd) != 0) {
    ADD_FAILURE() << "no pipe";
    return;
  }
  std::vector<std::string> words = {"Xvfb",      "-displayfd", std::to_string(pipefd[1]),
                                    "-screen",   "0",          screen,
                                    "-nolisten", "tcp",        "-noreset"};
  words.insert(words.end(), more.begin(), more.end());
  std::vector<char*> argv = Pointers(words);
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ == 0) {
    // The server must not outlive a test that is killed.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(127);
    close(pipefd[0]);
    const int null = open("/dev/null", O_RDWR);
    dup2(null, 1);
    dup2(null, 2);
    execvp(argv[0], argv.data());
    _exit(127);
  }
  close(pipefd[1]);
  const std::string number = ReadLine(pipefd[0], std::chrono::seconds(30));
  close(pipefd[0]);
  if (number.empty()) {
    ADD_FAILURE() << "Xvfb did not start";
    return;
  }
  name_ = ":" + number;
  setenv("DISPLAY", name_.c_str(), 1);
}

XServer::~XServer() {
  unsetenv("DISPLAY");
  if (pid_ <= 0) return;
  kill(pid_, SIGTERM);
  const auto gone = [this] { return waitpid(pid_, nullptr, WNOHANG) == pid_; };
  if (!WaitFor(gone, std::chrono::seconds(5))) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
}

Process::Process(std::vector<std::string> argv, const std::string& output,
                 const std::vector<std::string>& environment, const std::string& directory) {
  std::vector<char*> words = Pointers(argv);
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ != 0) return;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(127);
  if (!output.empty()) {
    const int fd = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    dup2(fd, 1);
    dup2(fd, 2);
  }
  for (const std::string& entry : environment) putenv(strdup(entry.c_str()));
  if (!directory.empty() && chdir(directory.c_str()) != 0) _exit(126);
  execvp(words[0], words.data());
  _exit(127);
}

Process::~Process() {
  if (!Running()) return;
  Kill(SIGKILL);
  Wait();
}

bool Process::Running() {
  if (pid_ <= 0 || status_ != -1) return false;
  int status;
  if (waitpid(pid_, &status, WNOHANG) != pid_) return true;
  status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  return false;
}

int Process::Wait(std::chrono::milliseconds deadline) {
  WaitFor([this] { return !Running(); }, deadline);
  return status_;
}

void Process::Kill(int signal) {
  kill(pid_, signal);
}

bool WaitFor(const std::function<bool()>& done, std::chrono::milliseconds deadline) {
  const auto end = std::chrono::steady_clock::now() + deadline;
  while (!done()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

Player::Player(const std::string& display) : display_(XOpenDisplay(display.c_str())) {
  if (display_ == nullptr) {
    ADD_FAILURE() << "cannot open " << display;
    return;
  }
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

void SetClass(Display* display, Window window, std::string classpart, std::string name) {
  XClassHint hint{name.data(), classpart.data()};
  XSetClassHint(display, window, &hint);
}

std::vector<Window> ChildrenOf(Display* display, Window window) {
  Window root;
  Window parent;
  Window* list = nullptr;
  unsigned count = 0;
  if (XQueryTree(display, window, &root, &parent, &list, &count) == 0) return {};
  std::vector<Window> children(list, list + count);
  if (list != nullptr) XFree(list);
  return children;
}

void SaveScreen(Display* display, const std::string& path) {
  const Window root = DefaultRootWindow(display);
  const int width = DisplayWidth(display, DefaultScreen(display));
  const int height = DisplayHeight(display, DefaultScreen(display));
  XImage* image = XGetImage(display, root, 0, 0, static_cast<unsigned>(width),
                            static_cast<unsigned>(height), AllPlanes, ZPixmap);
  if (image == nullptr) return;
  const std::string pnm = path + ".ppm";
  {
    std::ofstream out(pnm, std::ios::binary);
    out << "P6\n" << width << " " << height << "\n255\n";
    for (int y = 0; y < height; y++) {
      for (int x = 0; x < width; x++) {
        const unsigned long p = XGetPixel(image, x, y);
        out.put(static_cast<char>(p >> 16 & 0xff));
        out.put(static_cast<char>(p >> 8 & 0xff));
        out.put(static_cast<char>(p & 0xff));
      }
    }
  }
  XDestroyImage(image);
  Process convert({"convert", pnm, path});
  if (convert.Wait() == 0) std::remove(pnm.c_str());
}

}  // namespace gromlit::testing
