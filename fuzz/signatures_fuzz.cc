// Matching by signature against its judge, the same in its plainest form (tests/unit/recognition/
// literal.h): signatures of strokes and of symbols, the match of two signatures, the search through
// the actions of a plug-in, and what is said of actions that another one takes all strokes from.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/fake_server.h"
#include "fuzz/records.h"
#include "fuzz/require.h"
#include "fuzz/target.h"
#include "recognition/find_action.h"
#include "recognition/shadow.h"
#include "recognition/signature_match.h"
#include "recognition/stroke_signature.h"
#include "recognition/symbol_icon.h"
#include "tests/unit/recognition/literal.h"

namespace gromlit::fuzz {
namespace {

std::string SignatureOf(const Stroke& stroke) {
  char letters[kDrawnSignatureSize];
  StrokeSignature(letters, stroke.count, stroke.x, stroke.y);
  std::vector<literal::Point> points;
  for (int i = 0; i < stroke.count; i++) points.push_back({stroke.x[i], stroke.y[i]});
  Require(literal::StrokeSignature(points) == letters);
  return letters;
}

// A signature that needs no stroke.
std::string Letters(FuzzedDataProvider* data) {
  std::string letters = data->ConsumeRandomLengthString(40);
  for (char& c : letters) c = "abcd"[static_cast<unsigned char>(c) % 4];
  return letters;
}

void CheckPair(const std::string& one, const std::string& other) {
  Require((SignatureMatch(one.c_str(), other.c_str()) != 0) == literal::SignatureMatch(one, other));
  Require(SignatureMatch(one.c_str(), one.c_str()) == 1);
  Require((SignatureEqual(one.c_str(), other.c_str()) != 0) == (one == other));
}

void CheckLine(FuzzedDataProvider* data) {
  const literal::Point from{data->ConsumeIntegralInRange(0, 31),
                            data->ConsumeIntegralInRange(0, 31)};
  const literal::Point to{data->ConsumeIntegralInRange(0, 31), data->ConsumeIntegralInRange(0, 31)};
  int16_t x[64];
  int16_t y[64];
  const int n = VectorLineToPoints(0, x, y, from.x, from.y, to.x, to.y);
  const std::vector<literal::Point> points = literal::VectorLine(from, to);
  Require(points.size() == static_cast<size_t>(n));
  for (size_t i = 0; i < points.size(); i++) Require(points[i] == literal::Point{x[i], y[i]});
  GromlitSymbol sym{};
  IconLine(&sym, from.x, from.y, to.x, to.y);
  const std::vector<uint32_t> rows = literal::IconLine(from, to);
  Require(std::memcmp(rows.data(), sym.icon, sizeof sym.icon) == 0);
}

}  // namespace

void Run(FuzzedDataProvider* data) {
  GromlitPlugin plugin{};
  const int n = data->ConsumeIntegralInRange(0, kMaxActions);
  std::vector<std::string> signatures;
  for (int i = 0; i < n && (data->remaining_bytes() > 0 || i < 4); i++) {
    auto* action = new GromlitAction{};
    plugin.actions[plugin.nactions++] = action;
    FillSymbol(data, &action->sym);
    signatures.emplace_back(SymbolSignature(&action->sym));
    Require(signatures.back() == literal::SymbolSignature(action->sym));
  }
  for (int k = data->ConsumeIntegralInRange(1, 4); k > 0; k--) {
    const Stroke stroke = MakeAnyStroke(data);
    const std::string drawn = SignatureOf(stroke);
    Require(drawn.empty() || stroke.count < 2 || CanBeDrawn(drawn));
    const int found = FindAction(&plugin, stroke, {kBySignature, 3});
    Require(found == literal::FindAction(signatures, drawn));
    // An action that another one is said to take all strokes from never runs.
    for (int i = 0; found >= 0 && i < found; i++)
      Require(!Shadows(signatures[static_cast<size_t>(i)], signatures[static_cast<size_t>(found)]));
    for (const std::string& signature : signatures) CheckPair(signature, drawn);
  }
  const std::string one = Letters(data);
  const std::string other = Letters(data);
  CheckPair(one, other);
  if (CanBeDrawn(other) && Shadows(one, other))
    Require(SignatureMatch(other.c_str(), other.c_str()) == 0 ||
            SignatureMatch(one.c_str(), other.c_str()) == 1);
  CheckLine(data);
  ReleasePlugin(&plugin);
}

}  // namespace gromlit::fuzz
