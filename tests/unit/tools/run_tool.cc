#include "tests/unit/tools/run_tool.h"

#include "tests/support/built.h"
#include "tests/support/files.h"
#include "tests/support/process.h"
#include "tests/unit/core/golden.h"

namespace gromlit::testing {

ToolResult RunTool(const std::vector<std::string>& arguments, const std::string& input,
                   const std::string& output, const std::function<void()>& prepare) {
  const TempDir scratch;
  WriteText(scratch / "in", input);
  std::vector<std::string> argv = {Built("gromlit-tool")};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  const std::string out = output.empty() ? scratch / "out" : output;
  Process tool({.argv = argv,
                .input = scratch / "in",
                .output = out,
                .error = scratch / "err",
                .environment = {"DISPLAY"},
                .prepare = prepare});
  const int status = tool.Wait(std::chrono::seconds(100));
  return {status, output.empty() ? ReadText(out) : "", ReadText(scratch / "err")};
}

namespace {

// The 428 bytes of a symbol at `at`: an L with an icon of two bits.
void PutSymbol(Golden* file, size_t at) {
  file->Put(at, "L\xff#")
      .Put(at + 32, {3})
      .Put(at + 34 + 2, {16, 0, 16, 0, 8, 1})    // x[1..3] = 16, 16, 264
      .Put(at + 162 + 2, {16, 0, 8, 1, 8, 1})    // y[1..3] = 16, 264, 264
      .Put(at + 292, {0x01, 0, 0, 0})            // row 0: column 0
      .Put(at + 292 + 124, {0, 0, 0, 0x80})      // row 31: column 31
      .Put(at + 420, {0xfe, 0xff, 0xff, 0xff});  // spare
}

}  // namespace

std::vector<std::byte> GoldenSymbolFile() {
  Golden file(441);
  file.Put(0, "GromlitSymbol");
  PutSymbol(&file, 13);
  return file.bytes();
}

std::vector<std::byte> GoldenPluginFile() {
  Golden file(kPluginFileSize);
  file.Put(0, "GromlitPlugin")
      .Put(13, "Terminal")
      .Put(13 + 64, "XTerm.xterm")
      .Put(13 + 128, {0xff, 0xff, 0xff, 0xff})  // spare3 = -1
      .Put(13 + 132, {4, 3, 2, 1})              // spare4
      .Put(13 + 136, {5, 250})                  // spare1, spare2
      .Put(13 + 138, {0, 'x', 0, 255})          // chars1: NULs inside
      .Fill(13 + 586, 64, 'y')                  // chars8: full
      .Put(13 + 650, {2});                      // nactions
  PutSymbol(&file, kFirstAction);
  file.Put(kFirstAction + 428, "Clear")
      .Put(kFirstAction + 492, {0, 0, 0, 0x80})  // spare = -2^31
      .Put(kFirstAction + 496, {2})              // ncmds
      .Put(kFirstCommand, {0, 9})                // HotKey, nkeys 9
      .Put(kFirstCommand + 2, {46, 0, 0, 0, 255, 255})
      .Put(kFirstCommand + 18, {4, 0})
      .Put(kFirstCommand + 34, {1, 2, 3, 4, 5, 6, 7, 8})  // buttons, flag, checked
      .Put(kFirstCommand + 44, {0xfd, 0xff, 0xff, 0xff})  // spare = -3
      .Put(kFirstCommand + 48, {5})                       // ntext
      .Put(kFirstText, {'a', 0, 'b', 0xe4, 0})
      .Put(kSecondCommand, {77, 0});  // no type of ours, no text
  file.Put(kSecondAction + 428, "Empty");
  return file.bytes();
}

std::vector<std::byte> GoldenOptionsFile() {
  return Golden(305)
      .Put(0, "GromlitOption")
      .Put(13, {2, 0, 0, 0, 4, 0, 0, 0, 3, 0, 0, 0, 1, 0, 0, 0, 0xff, 0xff, 0xff, 0xff})
      .Put(33, {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0, 4, 0, 0, 0x80})
      .Put(49, "xdg-open %s")
      .Fill(177, 63, 's')  // sndcmd: as long as can be
      .Put(241, {0, 'z'})
      .bytes();
}

}  // namespace gromlit::testing
