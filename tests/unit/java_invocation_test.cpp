// Argument conversion inside a real virtual machine whose String(byte[])
// constructor is made to fail: the one failure the environment cannot
// provoke from outside.
#include <gtest/gtest.h>

#include "UnitSupport.h"

namespace zntest {
namespace {

JNIEnv* startVirtualMachine() {
  JavaVM* vm = nullptr;
  JNIEnv* env = nullptr;
  JavaVMInitArgs args = {JNI_VERSION_1_4, 0, nullptr, JNI_TRUE};
  if (JNI_CreateJavaVM(&vm, reinterpret_cast<void**>(&env), &args) < 0) abort();
  return env;
}

jobject failingNewObject(JNIEnv* env, jclass, jmethodID, va_list) {
  env->ThrowNew(env->FindClass("java/lang/OutOfMemoryError"), "injected");
  return nullptr;
}

TEST(ConvertStringDeathTest, FailingStringConstructionEndsTheCommand) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        Probe<> command("znexec");
        command.myEnv = startVirtualMachine();
        char text[] = "argument";
        if (command.convertString(text) == nullptr) abort();  // a working constructor
        static JNINativeInterface_ functions = *command.myEnv->functions;
        functions.NewObjectV = failingNewObject;
        command.myEnv->functions = &functions;
        command.convertString(text);
      },
      ::testing::ExitedWithCode(1),
      "OutOfMemoryError: injected(.|\n)*ERROR:   Cannot construct java/lang/String from znexec\\.");
}

}  // namespace
}  // namespace zntest
