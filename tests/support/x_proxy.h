// An X display that stands between clients and a server and knows where each request begins: it
// delays, counts, hides extensions, lets a test act between any two requests, and cuts connections.
//
// What cannot be had throws std::runtime_error. A test includes GoogleTest before Xlib, as always;
// this header needs neither.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace gromlit::testing {

// One request on its way to the server.
struct XRequest {
  int connection;            // from 0, in the order in which the clients came
  unsigned long number;      // from 1, as Xlib and the server count them
  int major;                 // opcode
  int minor;                 // second byte: the opcode within an extension
  const std::string* bytes;  // all of it, in the client's byte order
};

struct XCounts {
  unsigned long requests = 0;  // forwarded
  unsigned long replies = 0;   // forwarded, as are the events and errors
  unsigned long events = 0;
  unsigned long errors = 0;
  // How often the client sent something after it had been given an answer: a reply, or the error of
  // a request that has a reply. Replies that come together count once; one after which the client
  // sends nothing more does not count. A client that sends on while an answer is on its way to it
  // may count for a wait too many; with a delay this hardly happens.
  unsigned long round_trips = 0;
  size_t bytes_to_server = 0;  // the block that opens the connection included
  size_t bytes_to_client = 0;
  bool open = false;  // both ends
};

class XProxy {
 public:
  enum class Way { kToServer, kToClient };
  using Before = std::function<void(const XRequest&)>;

  // Listens on a display number of its own and forwards each client to `display`, a local one such
  // as ":7". One thread serves all connections until the object goes.
  explicit XProxy(const std::string& display);
  ~XProxy();
  XProxy(const XProxy&) = delete;
  XProxy& operator=(const XProxy&) = delete;

  const std::string& name() const;  // such as ":577"

  // What arrives from now on leaves this much later, whatever follows it: throughput stays
  // unlimited, and requests sent together arrive together.
  void SetDelay(std::chrono::microseconds to_server, std::chrono::microseconds to_client);

  // Called on the proxy's thread right before each request is forwarded; all that stands before it
  // in the same stream has been read by the server. Everything that goes through the proxy waits
  // meanwhile, so `before` uses connections past it, which no other thread uses. Empty: no more;
  // when this returns, the one before is not running and is not called again. May be called from
  // `before` itself only to do nothing more.
  void BeforeRequest(Before before);

  // Queries for this extension are answered "not present", from now on.
  void HideExtension(const std::string& extension);

  // Breaks a connection, for both ends at once. The first three do it when it comes to that, on
  // a connection that need not be there yet; what was forwarded before has left the proxy.
  void CutBeforeRequest(int connection, unsigned long number);
  void CutAfterRequest(int connection, unsigned long number);
  void CutAfterBytes(int connection, Way way, size_t bytes);
  void Cut(int connection);

  // Clients that have come so far, those included that have gone.
  int connections() const;
  // All zero for a connection that has not been made.
  XCounts Counts(int connection) const;
  XCounts Total() const;  // `open` when any is

 private:
  struct Wires;
  std::unique_ptr<Wires> wires_;
};

}  // namespace gromlit::testing
