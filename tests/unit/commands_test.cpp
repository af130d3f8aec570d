// Name reduction and the factory.
#include <gtest/gtest.h>

#include <memory>
#include <typeinfo>

#include "UnitSupport.h"
#include "ZnCLI.h"

namespace zntest {
namespace {

TEST(GetName, RemovesOnlyTheDirectory) {
  struct Case {
    const char* path;
    const char* name;
  };
  for (const Case& c :
       {Case{"/opt/zn/bin/znexec", "znexec"}, Case{"znexec", "znexec"}, Case{"./ZNEXEC", "ZNEXEC"},
        Case{"a/b/c", "c"}, Case{"a\\b", "a\\b"}, Case{"dir/", ""}, Case{"/", ""}, Case{"", ""},
        Case{"x/ znexec.sh ", " znexec.sh "}}) {
    EXPECT_EQ(ZnCMD::getName(c.path), c.name) << c.path;
  }
}

TEST(CreateCLI, PicksTheCommandClassAndKeepsTheTableSpelling) {
  struct Case {
    const char* typed;
    const char* name;
    const std::type_info& type;
    const char* javaClass;
  };
  const Case cases[] = {
      {"znexec", "znexec", typeid(ZnCLI), "com/brennic/zn/cli/ZnCommandDispatcher"},
      {"ZNEXEC", "znexec", typeid(ZnCLI), "com/brennic/zn/cli/ZnCommandDispatcher"},
      {"ZnExec", "znexec", typeid(ZnCLI), "com/brennic/zn/cli/ZnCommandDispatcher"},
      {"ZnDbGui", "zndbgui", typeid(ZnCLI), "com/brennic/zn/gui/debug_gui/ZnDebugMain"},
      {"orvex", "orvex", typeid(ZnAux), "com/brennic/zn/config/ZnRC"},
      {"zninitialization", "zninitialization", typeid(ZnAux),
       "com/brennic/zn/config/ZnInitialization"},
      {"zninitconfig", "zninitconfig", typeid(ZnAux2), "com/brennic/zn/cli/ZnAuxillaryDispatcher"},
      {"ZNVTB", "znvtb", typeid(ZnAux2), "com/brennic/zn/visualtoolbuilder/TBGuiDriver"},
      {"zninit", "zninit", typeid(ZnInitAux), "com/brennic/zn/config/ZnInit"},
      {"zngethostname", "zngethostname", typeid(ZnGetHostNameAux),
       "com/brennic/zn/utilities/ZnGetHostName"},
      {"znMakeKeys", "znmakekeys", typeid(ZnMakeKeysAux),
       "com/brennic/zn/utilities/authenticate/ZnKeyPairGen"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    std::unique_ptr<ZnCMD> command(ZnCLI::createCLI(c.typed));
    ASSERT_NE(command, nullptr);
    const ZnCMD& object = *command;
    EXPECT_EQ(typeid(object), c.type);
    EXPECT_EQ(command->getClassToLoad(), c.javaClass);
  }
}

TEST(CreateCLI, UnknownNamesGiveNullAndTraceTheName) {
  const std::string names[] = {"znexec ",
                               "znexe",
                               "znexecx",
                               "",
                               "zninventoryDMI",
                               "zninventorydmi",
                               std::string(300, 'Z'),
                               "znexec" + std::string(294, ' '),
                               "zn\xc3\x89xec"};
  for (const std::string& name : names) {
    TraceCapture trace(ALL_LEVELS);
    EXPECT_EQ(ZnCLI::createCLI(name), nullptr) << name;
    std::vector<std::string> lines = trace.lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0], "src/cxx/shared/ZnCLI/ZnCLI.cpp:     ERROR:   Unrecognized command name.");
    EXPECT_EQ(lines[1], "src/cxx/shared/ZnCLI/ZnCLI.cpp:     name.c_str()='" +
                            std::string(name.c_str()) + "'");
  }
}

TEST(CreateCLI, OnlyTheFirst255CharactersAreCompared) {
  // No command name is that long, so a cut name never matches, and nothing
  // beyond the cut is read into the key.
  EXPECT_EQ(ZnCLI::createCLI(std::string(255, 'a') + "znexec"), nullptr);
  EXPECT_EQ(ZnCLI::createCLI(std::string(100000, 'Q')), nullptr);
}

template <class Command>
void expectHooks(const char* name, int argc, const std::vector<std::string>& classOptions) {
  SCOPED_TRACE(name);
  char arg0[] = "znexec", arg1[] = "a", arg2[] = "b";
  char* argv[] = {arg0, arg1, arg2, nullptr};
  Probe<Command> command(name);
  command.myArgc = 3;
  command.myArgv = argv;
  command.localInit();
  EXPECT_EQ(command.myArgc, argc);
  EXPECT_EQ(command.myArgv, argv + (3 - argc));
  command.localVMargs(nullptr);
  EXPECT_EQ(command.options(), classOptions);
}

TEST(CommandHooks, ArgumentsAndOptionsPerClass) {
  expectHooks<ZnCLI>("znexec", 3, {"-client", "-Xint"});
  expectHooks<ZnAux2>("zninitconfig", 3, {});
  expectHooks<ZnAux>("znversion", 2, {});
  expectHooks<ZnInitAux>("zninit", 2, {});
  expectHooks<ZnGetHostNameAux>("zngethostname", 2, {});
  expectHooks<ZnMakeKeysAux>("znmakekeys", 2, {});
}

TEST(CommandHooks, ClassOptionHookIsTracedUnderItsOwnUnit) {
  TraceCapture trace(1);
  std::unique_ptr<ZnCMD> command(ZnCLI::createCLI("znnode"));
  command->localVMargs(nullptr);
  std::vector<std::string> lines = trace.lines();
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(lines.front(), "src/cxx/shared/ZnCLI/ZnCLI.cpp:     enter localVMargs");
  EXPECT_EQ(lines[1], std::string(CMD_UNIT) + ":     option.c_str()='-client'");
  EXPECT_EQ(lines.back(), "src/cxx/shared/ZnCLI/ZnCLI.cpp:     exit localVMargs");
}

TEST(CommandHooks, ZnnodeRemovesTheDisplay) {
  for (const char* name : {"znnode", "ZNNODE", "znexec", "orvex"}) {
    ScopedEnv env({{"DISPLAY", ":5"}});
    std::unique_ptr<ZnCMD> command(ZnCLI::createCLI(name));
    command->localInit();
    const bool removed = std::string(name) == "znnode" || std::string(name) == "ZNNODE";
    EXPECT_EQ(getenv("DISPLAY") == nullptr, removed) << name;
  }
}

}  // namespace
}  // namespace zntest
