// The least an in-process launcher can do: create the virtual machine with
// the options given, hand the keys over, call main, destroy the machine.
//
//   zn_bench_baseline CLASS ARG OPTION...
//
// CLASS is the main class in JNI form (a/b/C), ARG the one Java argument;
// every OPTION, the empty ones included, goes to the virtual machine as it is.
#include <jni.h>

#include <cstdio>
#include <vector>

namespace {

int fail(JNIEnv* env, const char* what) {
  if (env != nullptr && env->ExceptionCheck()) env->ExceptionDescribe();
  fprintf(stderr, "zn_bench_baseline: %s\n", what);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return fail(nullptr, "usage: zn_bench_baseline CLASS ARG OPTION...");
  std::vector<JavaVMOption> options;
  for (int i = 3; i < argc; ++i) options.push_back({argv[i], nullptr});
  JavaVMInitArgs initArgs{JNI_VERSION_1_4, static_cast<jint>(options.size()), options.data(),
                          JNI_TRUE};
  JavaVM* vm = nullptr;
  JNIEnv* env = nullptr;
  if (JNI_CreateJavaVM(&vm, reinterpret_cast<void**>(&env), &initArgs) < 0) {
    return fail(nullptr, "cannot create the virtual machine");
  }

  jclass auth = env->FindClass("com/brennic/zn/utilities/authenticate/ZnAuthenticate");
  jmethodID setKeys = auth ? env->GetStaticMethodID(auth, "setKeys", "()V") : nullptr;
  if (setKeys == nullptr) return fail(env, "no setKeys()");
  env->CallStaticVoidMethod(auth, setKeys);
  if (env->ExceptionCheck()) return fail(env, "setKeys() failed");

  jclass mainClass = env->FindClass(argv[1]);
  jmethodID main =
      mainClass ? env->GetStaticMethodID(mainClass, "main", "([Ljava/lang/String;)V") : nullptr;
  if (main == nullptr) return fail(env, "no main(String[])");
  jobjectArray args =
      env->NewObjectArray(1, env->FindClass("java/lang/String"), env->NewStringUTF(argv[2]));
  env->CallStaticVoidMethod(mainClass, main, args);
  if (env->ExceptionCheck()) return fail(env, "main failed");
  vm->DestroyJavaVM();
  return 0;
}
