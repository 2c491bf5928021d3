// What goes through the proxy reaches its end unchanged, and the proxy knows where it is cut.
#include <gtest/gtest.h>

#include "tests/support/x_proxy.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <atomic>
#include <string>
#include <thread>

#include "tests/support/built.h"
#include "tests/support/temp_install.h"
#include "tests/support/x_server.h"

namespace gromlit::testing {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

int errors = 0;

class ProxyTest : public ::testing::Test {
 protected:
  void SetUp() override {
    errors = 0;
    XSetErrorHandler([](Display*, XErrorEvent*) { return errors++, 0; });
  }
  void TearDown() override {
    if (client != nullptr) XCloseDisplay(client);
  }
  void Connect() {
    client = XOpenDisplay(proxy.name().c_str());
    ASSERT_NE(client, nullptr);
  }
  Window MakeWindow() {
    return XCreateSimpleWindow(client, DefaultRootWindow(client), 0, 0, 50, 50, 0, 0, 0);
  }

  XServer server;
  Player player{server.name()};
  XProxy proxy{server.name()};
  Display* client = nullptr;
};

TEST_F(ProxyTest, RequestsRepliesEventsAndErrorsPassAndAreCounted) {
  Connect();
  XSync(client, False);
  const XCounts before = proxy.Counts(0);
  EXPECT_EQ(before.requests, NextRequest(client) - 1) << "as Xlib counts them";
  const Window window = MakeWindow();
  XSelectInput(client, window, StructureNotifyMask);
  XMapWindow(client, window);  // one event
  XSync(client, False);        // one reply
  XDestroyWindow(client, window + 77);
  XSync(client, False);
  XEvent event;
  EXPECT_TRUE(XCheckTypedWindowEvent(client, window, MapNotify, &event));
  EXPECT_EQ(errors, 1);
  const XCounts after = proxy.Counts(0);
  EXPECT_EQ(after.requests - before.requests, 6u);
  EXPECT_EQ(after.replies - before.replies, 2u);
  EXPECT_EQ(after.events - before.events, 1u);
  EXPECT_EQ(after.errors - before.errors, 1u);
  // The second begins what comes after the first; nothing has come after the second.
  EXPECT_EQ(after.round_trips - before.round_trips, 2u);
  EXPECT_TRUE(after.open);
  EXPECT_EQ(proxy.connections(), 1);
  EXPECT_EQ(proxy.Total().requests, after.requests);
}

TEST_F(ProxyTest, ErrorOfARequestWithAReplyIsARoundTripAndRepliesTogetherAreOne) {
  Connect();
  proxy.SetDelay(milliseconds(5), milliseconds(5));
  XSync(client, False);
  XNoOp(client);
  XSync(client, False);
  const unsigned long before = proxy.Counts(0).round_trips;
  XWindowAttributes attributes;
  EXPECT_EQ(XGetWindowAttributes(client, 0x777777, &attributes), 0);
  XSync(client, False);
  EXPECT_EQ(proxy.Counts(0).round_trips - before, 2u);
}

TEST_F(ProxyTest, LongRequestsPass) {
  Connect();
  const Window window = MakeWindow();
  // Longer than the length of a plain request can say, and than a socket takes at once.
  ASSERT_GT(XExtendedMaxRequestSize(client) * 4, 2000000);
  std::string text(2000000, 'x');
  for (size_t i = 0; i < text.size(); i++) text[i] = static_cast<char>('a' + i % 23);
  XChangeProperty(client, window, XA_WM_NAME, XA_STRING, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(text.data()),
                  static_cast<int>(text.size()));
  XSync(client, False);
  Atom type;
  int format;
  unsigned long count;
  unsigned long rest;
  unsigned char* data = nullptr;
  ASSERT_EQ(XGetWindowProperty(client, window, XA_WM_NAME, 0, 1000000, False, XA_STRING, &type,
                               &format, &count, &rest, &data),
            Success);
  EXPECT_EQ(std::string(reinterpret_cast<char*>(data), count), text);
  XFree(data);
  EXPECT_EQ(errors, 0);
  EXPECT_EQ(proxy.Counts(0).requests, NextRequest(client) - 1);
}

TEST_F(ProxyTest, DelaysEachWayAndLetsRequestsTravelTogether) {
  Connect();
  XSync(client, False);
  proxy.SetDelay(milliseconds(30), milliseconds(50));
  const auto start = Clock::now();
  XSync(client, False);
  const auto one = Clock::now() - start;
  EXPECT_GE(one, milliseconds(80));
  for (int i = 0; i < 500; i++) {
    XNoOp(client);
    XFlush(client);
  }
  XSync(client, False);
  // One after the other they would take 15 seconds.
  EXPECT_LT(Clock::now() - start, milliseconds(5000));
  proxy.SetDelay({}, {});
}

TEST_F(ProxyTest, ActsRightBeforeARequest) {
  Connect();
  const Window window = MakeWindow();
  XSync(client, False);
  // The name is read again and again; another client changes it before the third reading.
  int readings = 0;
  std::string bytes;
  proxy.BeforeRequest([&](const XRequest& request) {
    if (request.major != 20 || ++readings != 3) return;
    bytes = *request.bytes;
    XStoreName(player.display(), window, "new");
    XSync(player.display(), False);
  });
  XStoreName(client, window, "old");
  std::string read;
  for (int i = 0; i < 4; i++) {
    char* name = nullptr;
    XFetchName(client, window, &name);
    read += std::string(name) + " ";
    XFree(name);
  }
  proxy.BeforeRequest(nullptr);
  EXPECT_EQ(read, "old old new new ");
  EXPECT_EQ(bytes.size(), 24u);
}

TEST_F(ProxyTest, WhatStandsBeforeARequestIsDoneWhenItIsItsTurn) {
  Connect();
  const Window window = MakeWindow();
  XSync(client, False);
  const unsigned long first = NextRequest(client);
  std::vector<std::string> seen;
  proxy.BeforeRequest([&](const XRequest& request) {
    if (request.number < first) return;
    char* name = nullptr;
    XFetchName(player.display(), window, &name);
    seen.emplace_back(name != nullptr ? name : "");
    if (name != nullptr) XFree(name);
  });
  for (int i = 0; i < 20; i++) XStoreName(client, window, std::to_string(i).c_str());
  XSync(client, False);  // sent in one piece
  proxy.BeforeRequest(nullptr);
  ASSERT_EQ(seen.size(), 21u);
  for (size_t i = 1; i < seen.size(); i++) EXPECT_EQ(seen[i], std::to_string(i - 1));
}

TEST_F(ProxyTest, HidesAnExtension) {
  Connect();
  int major;
  int event;
  int error;
  EXPECT_TRUE(XQueryExtension(client, "SHAPE", &major, &event, &error));
  proxy.HideExtension("SHAPE");
  EXPECT_FALSE(XQueryExtension(client, "SHAPE", &major, &event, &error));
  EXPECT_TRUE(XQueryExtension(client, "XTEST", &major, &event, &error));
}

// A client that makes one window after the other until its connection breaks; the number of
// windows that the server has seen.
size_t WindowsMade(const std::string& server, const std::string& display) {
  Player watcher(server);
  XSelectInput(watcher.display(), watcher.root(), SubstructureNotifyMask);
  XSync(watcher.display(), False);
  const Process client({Built("tests/probe"), "--output", "/dev/null"}, "/dev/null",
                       {"DISPLAY=" + display});
  size_t made = 0;
  WaitFor([&] {
    XEvent event;
    while (XCheckTypedEvent(watcher.display(), CreateNotify, &event)) made++;
    return !const_cast<Process&>(client).Running();
  });
  XSync(watcher.display(), False);
  XEvent event;
  while (XCheckTypedEvent(watcher.display(), CreateNotify, &event)) made++;
  return made;
}

TEST_F(ProxyTest, CutsBetweenRequests) {
  // The request that makes the probe's window.
  std::atomic<unsigned long> creates{0};
  proxy.BeforeRequest([&](const XRequest& request) {
    if (request.major == 1 && creates == 0) creates = request.number;
  });
  {
    const Process probe({Built("tests/probe"), "--output", "/dev/null"}, "/dev/null",
                        {"DISPLAY=" + proxy.name()});
    ASSERT_TRUE(WaitFor([&] { return creates != 0; }));
  }
  proxy.BeforeRequest(nullptr);
  proxy.CutBeforeRequest(1, creates);
  EXPECT_EQ(WindowsMade(server.name(), proxy.name()), 0u);
  EXPECT_EQ(proxy.Counts(1).requests, creates - 1);
  EXPECT_FALSE(proxy.Counts(1).open);
  proxy.CutAfterRequest(2, creates);
  EXPECT_EQ(WindowsMade(server.name(), proxy.name()), 1u);
  EXPECT_EQ(proxy.Counts(2).requests, creates);
}

TEST_F(ProxyTest, CutsWithinAMessage) {
  proxy.CutAfterBytes(0, XProxy::Way::kToServer, 5);
  EXPECT_EQ(XOpenDisplay(proxy.name().c_str()), nullptr);
  EXPECT_EQ(proxy.Counts(0).bytes_to_server, 5u);
  proxy.CutAfterBytes(1, XProxy::Way::kToClient, 100);
  EXPECT_EQ(XOpenDisplay(proxy.name().c_str()), nullptr);
  EXPECT_EQ(proxy.Counts(1).bytes_to_client, 100u);
  Connect();  // later ones are whole
  proxy.Cut(2);
  EXPECT_TRUE(WaitFor([&] { return !proxy.Counts(2).open; }));
  // Closing it only frees what it has here.
  XSetIOErrorHandler([](Display*) { return 0; });
  XSetIOErrorExitHandler(
      client, [](Display*, void*) {}, nullptr);
}

TEST_F(ProxyTest, ServesSeveralClientsAtOnceAndSaysWhoIsWho) {
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int i = 0; i < 4; i++) {
    threads.emplace_back([&] {
      Display* display = XOpenDisplay(proxy.name().c_str());
      if (display == nullptr) {
        wrong++;
        return;
      }
      for (int k = 0; k < 200; k++) {
        const std::string name = "atom " + std::to_string(k);
        const Atom atom = XInternAtom(display, name.c_str(), False);  // asks the server
        char* read = XGetAtomName(display, atom);
        if (name != read) wrong++;
        XFree(read);
      }
      XCloseDisplay(display);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(proxy.connections(), 4);
  for (int i = 0; i < 4; i++) EXPECT_GE(proxy.Counts(i).round_trips, 200u);
}

TEST_F(ProxyTest, ProgramRunsACommandBehindASlowLinkAndSaysWhatItSent) {
  const TempInstall files;
  Process link({Built("tests/x_link"), "--delay", "10", "--to", server.name(), "--count",
                files / "counts", "--", "xset", "q"},
               files / "out");
  EXPECT_EQ(link.Wait(), 0) << ReadText(files / "out");
  EXPECT_NE(ReadText(files / "out").find("Keyboard Control"), std::string::npos);
  const std::string counts = ReadText(files / "counts");
  EXPECT_EQ(counts.find("connection 0 requests "), 0u) << counts;
  EXPECT_NE(counts.find("total requests "), std::string::npos) << counts;
  Process failing({Built("tests/x_link"), "--to", server.name(), "--", "sh", "-c", "exit 7"},
                  files / "out2");
  EXPECT_EQ(failing.Wait(), 7);
  Process wrong({Built("tests/x_link"), "--delay", "x", "--to", ":1", "--", "true"},
                files / "out3");
  EXPECT_EQ(wrong.Wait(), 2);
}

}  // namespace
}  // namespace gromlit::testing
