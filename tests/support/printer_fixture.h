// Test support: print jobs written to files in a scratch directory.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/configuration.h"
#include "framework/files.h"
#include "framework/printers.h"
#include "framework/state.h"
#include "framework/text.h"
#include "support/dialogue_fixture.h"
#include "support/scratch_directory.h"

namespace kntr::testing {

// A dialogue test with a scratch directory, an empty configuration and no
// print job; the identity of the module is set as the program sets it.
class PrinterTest : public DialogueTest, public ScratchDirectory {
 protected:
  // Lines of the first page's head: the box and the gap under it.
  static constexpr int FirstHeadLines = 9 + framework::BlockGapLines;

  void SetUp() override {
    DialogueTest::SetUp();
    framework::resetPrinting();
    framework::printerHooks() = {};
    framework::resetConfiguration();
    framework::ProgramState& p = framework::program();
    p.SPNAME = "KNTR";
    p.SPVERS = "1998-0223";
    p.packageName = "Tarvik";
    p.packageVersion = "2016A";
    p.projectName = "demo";
    p.company = "ACME";
    p.user = "me";
  }
  void TearDown() override {
    framework::resetPrinting();
    framework::printerHooks() = {};
    framework::resetConfiguration();
    framework::simulateWriteFailureAfter(-1);
    DialogueTest::TearDown();
  }

  // Opens a file printer job on "out.lst" with `model` and `lines` a page.
  std::string open(const std::string& model, int lines = 66) {
    const std::string name = path("out.lst");
    bool status = true;
    framework::OPPRNT(framework::TargetFilePrinter, name, model, lines, "", status);
    EXPECT_FALSE(status);
    return name;
  }
  // Completes the job and returns the lines of the file.
  std::vector<std::string> finish() {
    bool status = true;
    framework::CLPRNT(true, status);
    EXPECT_FALSE(status);
    return readLines(path("out.lst"));
  }
  // The lines of the file after the first page's head.
  std::vector<std::string> finishBody() {
    std::vector<std::string> lines = finish();
    if (static_cast<int>(lines.size()) < FirstHeadLines) return {};
    return std::vector<std::string>(lines.begin() + FirstHeadLines, lines.end());
  }
  // Adds a printer to a table of the configuration.
  static void addPrinter(framework::DeviceTable table, const std::string& name,
                         const std::string& interface = "", const std::string& command = "",
                         int lines = framework::DefaultPrinterLines) {
    framework::Configuration& c = framework::configuration();
    auto& t = table == framework::DeviceTable::System ? c.printers : c.filePrinters;
    framework::PrinterEntry& e = t.entry(++t.count);
    e.name = name;
    e.interface = interface;
    e.command = command;
    e.linesPerPage = lines;
  }
};

}  // namespace kntr::testing
