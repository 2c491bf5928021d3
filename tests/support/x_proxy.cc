#include "tests/support/x_proxy.h"

#include <fcntl.h>
#include <linux/sockios.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace gromlit::testing {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::microseconds;

constexpr const char* kDirectory = "/tmp/.X11-unix";
constexpr int kQueryExtension = 98;
// Kinds of messages from the server; all others are events.
constexpr int kError = 0;
constexpr int kReply = 1;
constexpr int kGenericEvent = 35;

// Core requests that are answered with a reply.
constexpr int kAnswered[] = {3,  14, 15, 16,  17,  20,  21,  23,  26,  31,  38,  39, 40, 43,
                             44, 47, 48, 49,  50,  52,  73,  83,  84,  85,  86,  87, 91, 92,
                             97, 98, 99, 101, 103, 106, 108, 110, 116, 117, 118, 119};

// Whether a request with this opcode waits for something. Of extensions nothing is known: yes.
bool HasReply(int major) {
  return major >= 128 ||
         std::find(std::begin(kAnswered), std::end(kAnswered), major) != std::end(kAnswered);
}

int LocalSocket() {
  return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
}

sockaddr_un AddressOf(const std::string& number) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::snprintf(address.sun_path, sizeof address.sun_path, "%s/X%s", kDirectory, number.c_str());
  return address;
}

// Connects to a local server; -1 when it is not there.
int ConnectTo(const std::string& number) {
  const int fd = LocalSocket();
  const sockaddr_un address = AddressOf(number);
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(fd);
    return -1;
  }
  return fd;
}

// Bytes of one direction that wait until they are due.
struct Chunk {
  Clock::time_point due;
  std::string bytes;
};

// One direction of a connection: bytes that have come, whole messages cut from them, and what could
// not be sent yet.
struct Stream {
  std::deque<Chunk> late;
  std::string in;
  std::string out;
  size_t sent = 0;          // bytes that were forwarded, those in `out` included
  size_t limit = SIZE_MAX;  // of `sent`: then the connection is cut
  bool set_up = false;      // the block that opens the connection is through
};

struct Link {
  int client = -1;
  int server = -1;
  bool msb = false;       // the client's byte order
  bool answered = false;  // the client has been given something it may have waited for
  Stream to_server;
  Stream to_client;
  std::deque<unsigned long> hidden;  // numbers of the queries to be answered "not present"
  XCounts counts;
};

unsigned Two(const Link& link, const std::string& bytes, size_t at) {
  const auto a = static_cast<unsigned char>(bytes[at]);
  const auto b = static_cast<unsigned char>(bytes[at + 1]);
  return link.msb ? a * 256U + b : b * 256U + a;
}

size_t Four(const Link& link, const std::string& bytes, size_t at) {
  const size_t a = Two(link, bytes, at);
  const size_t b = Two(link, bytes, at + 2);
  return link.msb ? a << 16 | b : b << 16 | a;
}

size_t Padded(size_t size) {
  return (size + 3) / 4 * 4;
}

// Length of the message that begins at `at`; 0 when too little has come to tell.
size_t RequestLength(Link* link, const std::string& in, size_t at) {
  const size_t have = in.size() - at;
  if (!link->to_server.set_up) {
    if (have < 12) return 0;
    link->msb = in[at] == 'B';
    return 12 + Padded(Two(*link, in, at + 6)) + Padded(Two(*link, in, at + 8));
  }
  if (have < 4) return 0;
  const unsigned units = Two(*link, in, at + 2);
  if (units != 0) return units * size_t{4};
  if (have < 8) return 0;
  return std::max(Four(*link, in, at + 4) * 4, size_t{8});  // a long one
}

size_t AnswerLength(const Link& link, const std::string& in, size_t at) {
  const size_t have = in.size() - at;
  if (!link.to_client.set_up) return have < 8 ? 0 : 8 + Two(link, in, at + 6) * size_t{4};
  if (have < 32) return 0;
  const int kind = in[at] & 0x7f;
  return kind == kReply || kind == kGenericEvent ? 32 + Four(link, in, at + 4) * 4 : 32;
}

}  // namespace

struct XProxy::Wires {
  std::string name;
  std::string own_number;  // of the own display
  std::string to_number;   // of the server
  int listening = -1;
  int wake[2] = {-1, -1};
  std::thread thread;

  // `lock` guards all that follows; `calling` is held during the callback.
  mutable std::mutex lock;
  std::recursive_mutex calling;
  Before before;
  Wanted wanted;
  microseconds delay[2] = {};
  std::vector<std::unique_ptr<Link>> links;
  std::set<std::string> hidden;
  std::map<int, std::set<unsigned long>> cut_before;
  std::map<int, std::map<XProxy::Way, size_t>> cut_bytes;
  bool end = false;

  void Wake() { (void)!write(wake[1], "", 1); }

  void Close(Link* link) {
    for (int* fd : {&link->client, &link->server}) {
      if (*fd >= 0) close(*fd);
      *fd = -1;
    }
    link->counts.open = false;
  }

  void Accept() {
    const int client = accept4(listening, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (client < 0) return;
    const int server = ConnectTo(to_number);
    if (server < 0) {
      close(client);
      return;
    }
    fcntl(server, F_SETFL, O_NONBLOCK);
    const std::lock_guard guard(lock);
    auto link = std::make_unique<Link>();
    link->client = client;
    link->server = server;
    link->counts.open = true;
    for (const auto& [way, bytes] : cut_bytes[static_cast<int>(links.size())])
      (way == Way::kToServer ? link->to_server : link->to_client).limit = bytes;
    links.push_back(std::move(link));
  }

  // Sends what the other end takes; false when it is gone.
  static bool Send(int fd, Stream* stream) {
    while (!stream->out.empty()) {
      const ssize_t n = send(fd, stream->out.data(), stream->out.size(), MSG_NOSIGNAL);
      if (n < 0) return errno == EAGAIN || errno == EINTR;
      stream->out.erase(0, static_cast<size_t>(n));
    }
    return true;
  }
  // Sends all of it, and for the server waits until it has read it.
  static void SendAll(int fd, Stream* stream, bool until_read) {
    const auto end = Clock::now() + std::chrono::seconds(10);
    while (Send(fd, stream) && Clock::now() < end) {
      int left = 0;
      if (stream->out.empty() && (!until_read || ioctl(fd, SIOCOUTQ, &left) != 0 || left == 0))
        return;
      std::this_thread::sleep_for(microseconds(50));
    }
  }

  // Forwards bytes; false when the connection is to be cut behind them.
  static bool Forward(Stream* stream, const std::string& bytes) {
    const size_t room = stream->limit - stream->sent;
    const size_t n = std::min(bytes.size(), room);
    stream->out.append(bytes, 0, n);
    stream->sent += n;
    return stream->sent < stream->limit;
  }
  void CutBehind(Link* link) {
    SendAll(link->server, &link->to_server, true);
    SendAll(link->client, &link->to_client, false);
    Close(link);
  }

  // Whether the request asks for an extension that is hidden.
  bool AsksForHidden(const Link& link, const std::string& bytes) const {
    if (bytes[0] != kQueryExtension || bytes.size() < 8) return false;
    const size_t length = Two(link, bytes, 4);
    return 8 + length <= bytes.size() && hidden.count(bytes.substr(8, length)) != 0;
  }

  // Takes whole requests from what is due. `lock` is held, but not during a callback.
  void Requests(int index, Link* link, std::unique_lock<std::mutex>* held) {
    Stream* stream = &link->to_server;
    size_t at = 0;
    for (;;) {
      const size_t length = RequestLength(link, stream->in, at);
      if (length == 0 || length > stream->in.size() - at) break;
      const std::string bytes = stream->in.substr(at, length);
      at += length;
      if (!stream->set_up) {
        stream->set_up = true;
      } else {
        const unsigned long number = link->counts.requests + 1;
        if (cut_before[index].count(number) != 0) return CutBehind(link);
        const XRequest request{index, number, static_cast<unsigned char>(bytes[0]),
                               static_cast<unsigned char>(bytes[1]), &bytes};
        if (before && (!wanted || wanted(request))) {
          SendAll(link->server, stream, true);
          held->unlock();
          Call(request);
          held->lock();
          if (link->client < 0) return;
        }
        if (AsksForHidden(*link, bytes)) link->hidden.push_back(number);
        link->counts.requests++;
        if (link->answered) link->counts.round_trips++;
        link->answered = false;
      }
      const bool on = Forward(stream, bytes);
      link->counts.bytes_to_server = stream->sent;
      if (!on) return CutBehind(link);
      if (cut_before[index].count(link->counts.requests + 1) != 0) return CutBehind(link);
    }
    stream->in.erase(0, at);
  }
  void Call(const XRequest& request) {
    const std::lock_guard guard(calling);
    Before call;
    {
      const std::lock_guard reading(lock);
      call = before;
    }
    if (call) call(request);
  }

  void Answers(Link* link) {
    Stream* stream = &link->to_client;
    size_t at = 0;
    for (;;) {
      const size_t length = AnswerLength(*link, stream->in, at);
      if (length == 0 || length > stream->in.size() - at) break;
      std::string bytes = stream->in.substr(at, length);
      at += length;
      if (!stream->set_up) {
        stream->set_up = true;
      } else {
        Count(link, &bytes);
      }
      const bool on = Forward(stream, bytes);
      link->counts.bytes_to_client = stream->sent;
      if (!on) return CutBehind(link);
    }
    stream->in.erase(0, at);
  }
  static void Count(Link* link, std::string* bytes) {
    const int kind = static_cast<unsigned char>((*bytes)[0]);
    if (kind == kReply) {
      link->counts.replies++;
      link->answered = true;
      if (!link->hidden.empty() && Two(*link, *bytes, 2) == (link->hidden.front() & 0xffff)) {
        link->hidden.pop_front();
        std::fill(bytes->begin() + 8, bytes->begin() + 12, '\0');
      }
    } else if (kind == kError) {
      link->counts.errors++;
      if (HasReply(static_cast<unsigned char>((*bytes)[10]))) link->answered = true;
    } else {
      link->counts.events++;
    }
  }

  // Reads what there is; false at the end of the connection.
  bool Read(int fd, Stream* stream, microseconds late) {
    char buffer[65536];
    for (;;) {
      const ssize_t n = recv(fd, buffer, sizeof buffer, 0);
      if (n == 0) return false;
      if (n < 0) return errno == EAGAIN || errno == EINTR;
      stream->late.push_back({Clock::now() + late, std::string(buffer, static_cast<size_t>(n))});
    }
  }
  static bool Due(Stream* stream) {
    bool some = false;
    while (!stream->late.empty() && stream->late.front().due <= Clock::now()) {
      stream->in += stream->late.front().bytes;
      stream->late.pop_front();
      some = true;
    }
    return some;
  }

  // One end has gone. What it sent before still reaches the other, at its time.
  void Serve(int index, bool client_ready, bool server_ready, std::unique_lock<std::mutex>* held) {
    Link* link = links[static_cast<size_t>(index)].get();
    bool on = !client_ready || Read(link->client, &link->to_server, delay[0]);
    on = (!server_ready || Read(link->server, &link->to_client, delay[1])) && on;
    if (!on) {
      for (Stream* stream : {&link->to_server, &link->to_client})
        for (Chunk& chunk : stream->late) chunk.due = Clock::now();
    }
    if (Due(&link->to_server)) Requests(index, link, held);
    if (link->client < 0) return;
    if (Due(&link->to_client)) Answers(link);
    if (link->client < 0) return;
    if (!on) return CutBehind(link);
    if (!Send(link->server, &link->to_server) || !Send(link->client, &link->to_client)) Close(link);
  }

  void Run() {
    for (;;) {
      std::vector<pollfd> fds = {{listening, POLLIN, 0}, {wake[0], POLLIN, 0}};
      std::vector<int> served;
      auto next = Clock::time_point::max();
      {
        const std::lock_guard guard(lock);
        if (end) return;
        for (size_t i = 0; i < links.size(); i++) {
          const Link& link = *links[i];
          if (link.client < 0) continue;
          served.push_back(static_cast<int>(i));
          const auto events = [](const Stream& out) {
            return static_cast<short>(out.out.empty() ? POLLIN : POLLIN | POLLOUT);
          };
          fds.push_back({link.client, events(link.to_client), 0});
          fds.push_back({link.server, events(link.to_server), 0});
          for (const Stream* stream : {&link.to_server, &link.to_client})
            if (!stream->late.empty()) next = std::min(next, stream->late.front().due);
        }
      }
      timespec time{};
      if (next != Clock::time_point::max()) {
        const auto left = std::max(next - Clock::now(), Clock::duration{});
        const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(left).count();
        time = {ns / 1000000000, ns % 1000000000};
      }
      ppoll(fds.data(), fds.size(), next == Clock::time_point::max() ? nullptr : &time, nullptr);
      if (fds[1].revents != 0) {
        char byte;
        (void)!read(wake[0], &byte, 1);
      }
      if (fds[0].revents != 0) Accept();
      for (size_t i = 0; i < served.size(); i++) {
        std::unique_lock held(lock);
        if (links[static_cast<size_t>(served[i])]->client < 0) continue;
        Serve(served[i], fds[2 + 2 * i].revents != 0, fds[3 + 2 * i].revents != 0, &held);
      }
    }
  }
};

XProxy::XProxy(const std::string& display) : wires_(std::make_unique<Wires>()) {
  const size_t colon = display.find(':');
  if (colon == std::string::npos || (colon != 0 && display.substr(0, colon) != "unix"))
    throw std::runtime_error("not a local display: " + display);
  wires_->to_number = display.substr(colon + 1, display.find('.', colon) - colon - 1);
  mkdir(kDirectory, 01777);
  wires_->listening = LocalSocket();
  for (int number = 500;; number++) {
    if (number == 5000) throw std::runtime_error("no display number is free");
    wires_->own_number = std::to_string(number);
    const sockaddr_un address = AddressOf(wires_->own_number);
    if (bind(wires_->listening, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
      break;
  }
  if (listen(wires_->listening, 100) != 0 || pipe2(wires_->wake, O_CLOEXEC) != 0)
    throw std::runtime_error("no socket to listen on");
  wires_->name = ":" + wires_->own_number;
  wires_->thread = std::thread([this] { wires_->Run(); });
}

XProxy::~XProxy() {
  {
    const std::lock_guard guard(wires_->lock);
    wires_->end = true;
  }
  wires_->Wake();
  wires_->thread.join();
  for (const auto& link : wires_->links) wires_->Close(link.get());
  close(wires_->listening);
  close(wires_->wake[0]);
  close(wires_->wake[1]);
  unlink(AddressOf(wires_->own_number).sun_path);
}

const std::string& XProxy::name() const {
  return wires_->name;
}

void XProxy::SetDelay(microseconds to_server, microseconds to_client) {
  const std::lock_guard guard(wires_->lock);
  wires_->delay[0] = to_server;
  wires_->delay[1] = to_client;
}

void XProxy::BeforeRequest(Before before, Wanted wanted) {
  const std::lock_guard call(wires_->calling);
  const std::lock_guard guard(wires_->lock);
  wires_->before = std::move(before);
  wires_->wanted = std::move(wanted);
}

void XProxy::HideExtension(const std::string& extension) {
  const std::lock_guard guard(wires_->lock);
  wires_->hidden.insert(extension);
}

void XProxy::CutBeforeRequest(int connection, unsigned long number) {
  const std::lock_guard guard(wires_->lock);
  wires_->cut_before[connection].insert(number);
}

void XProxy::CutAfterRequest(int connection, unsigned long number) {
  CutBeforeRequest(connection, number + 1);
}

void XProxy::CutAfterBytes(int connection, Way way, size_t bytes) {
  const std::lock_guard guard(wires_->lock);
  wires_->cut_bytes[connection][way] = bytes;
  if (connection >= static_cast<int>(wires_->links.size())) return;
  Link* link = wires_->links[static_cast<size_t>(connection)].get();
  Stream* stream = way == Way::kToServer ? &link->to_server : &link->to_client;
  stream->limit = std::max(bytes, stream->sent);
}

void XProxy::Cut(int connection) {
  const std::lock_guard guard(wires_->lock);
  if (connection < 0 || connection >= static_cast<int>(wires_->links.size())) return;
  Link* link = wires_->links[static_cast<size_t>(connection)].get();
  // The thread may be waiting on them: it closes them when it sees the end.
  for (const int fd : {link->client, link->server})
    if (fd >= 0) shutdown(fd, SHUT_RDWR);
}

int XProxy::connections() const {
  const std::lock_guard guard(wires_->lock);
  return static_cast<int>(wires_->links.size());
}

XCounts XProxy::Counts(int connection) const {
  const std::lock_guard guard(wires_->lock);
  if (connection < 0 || connection >= static_cast<int>(wires_->links.size())) return {};
  return wires_->links[static_cast<size_t>(connection)]->counts;
}

XCounts XProxy::Total() const {
  XCounts total;
  for (int i = 0; i < connections(); i++) {
    const XCounts counts = Counts(i);
    total.requests += counts.requests;
    total.replies += counts.replies;
    total.events += counts.events;
    total.errors += counts.errors;
    total.round_trips += counts.round_trips;
    total.bytes_to_server += counts.bytes_to_server;
    total.bytes_to_client += counts.bytes_to_client;
    total.open = total.open || counts.open;
  }
  return total;
}

}  // namespace gromlit::testing
