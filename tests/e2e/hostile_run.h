// Fixture for tests in which other clients do their worst: the program runs behind a proxy, with
// one action for the application "Victim", whose gestures are interfered with, and one for "Other",
// over which gestures must always work.
#pragma once

#include "tests/e2e/front_end.h"

#include <atomic>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/x_proxy.h"

namespace gromlit::testing {

struct Scene {
  Display* display;  // a client of its own
  Window top;        // of the application under the gesture
  Window frame;      // what lies on the root window: the same without a window manager
  Window other;      // another application
  pid_t manager;     // the window manager; 0 where there is none
};

// What another client does, and what ends it where it lasts.
struct Attack {
  const char* name;
  void (*begin)(const Scene& scene);
  void (*end)(const Scene& scene) = nullptr;
};

// From one request that is attacked at to the next, by GROMLIT_EVERY_REQUEST; 0: one is enough.
unsigned long AttackStep();

class HostileRun : public FrontEnd {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Options for a run without a splash: the field temp1, and choices of temp2.
  void WriteChoices(int delivery, int choices);
  // Starts the program and "Other", the main window out of the way.
  void StartAll();
  // The program ended of itself, as windows let their user end it: once more.
  void StartAgain();

  unsigned long Pick(unsigned long n) { return random_() % n; }

  // Before request `number`, from 1, of a connection of the program's, or before those that are
  // `wanted`, the attack begins; it ends by itself soon, for what is frozen must not stay so on its
  // account. Both are to live until Disarm.
  void Arm(const Scene& scene, const Attack& attack, int connection, unsigned long number);
  void Arm(const Scene& scene, const Attack& attack, const XProxy::Wanted& wanted);
  // Returns whether it came to that; what has begun has ended then.
  bool Disarm();
  // Makes an attack before requests of something that takes `usual` of them, by AttackStep: one
  // that the seed chooses, or each. `attacked` does it and returns whether it came to the request;
  // after it all has to be well. Returns how many came.
  int Sweep(const Attack& attack, unsigned long usual, unsigned long most,
            const std::function<bool(unsigned long number)>& attacked);

  // The program's windows that are on the screen, but for the trail; and all that it has.
  std::vector<Window> ShownBelow(Window window, int depth);
  std::vector<Window> OwnWindows();
  // Asks all that is on the screen to close, as a window manager does, until nothing is.
  void CloseAll();
  // A stroke on "Other", and whether it was acted on before the deadline.
  bool StrokeActs(std::chrono::milliseconds deadline = std::chrono::seconds(9));
  // The pointer and the keyboard are free, nothing is down, the program says nothing, and a gesture
  // on "Other" is acted on; `taken`: soon, as another client has had the draw button.
  void ExpectAllIsWell(bool taken = false);

  unsigned seed_ = 0;
  std::mt19937 random_;
  std::unique_ptr<XProxy> proxy_;
  Display* intruder_ = nullptr;  // for use in the proxy's thread
  std::unique_ptr<ProbeClient> other_;
  Window main_ = 0;
  size_t quiet_ = 0;  // length of what the program has said at its start

 private:
  void ExpectQuiet();

  std::atomic<bool> fired_{false};
  std::thread ending_;
};

}  // namespace gromlit::testing
