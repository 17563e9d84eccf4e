// The one data race that the library accepts, marked for the thread sanitizer.
#pragma once

#if defined(__SANITIZE_THREAD__)
#define FRAMESINK_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define FRAMESINK_THREAD_SANITIZER 1
#endif
#endif

#if defined(FRAMESINK_THREAD_SANITIZER)
extern "C" void AnnotateIgnoreWritesBegin(const char* file, int line);
extern "C" void AnnotateIgnoreWritesEnd(const char* file, int line);
#endif

namespace framesink {

// While it lives, the thread sanitizer accepts that another thread reads what this thread writes. A
// host that submits twice within one display pass overwrites the picture that is being drawn; that
// is the price for never waiting.
class AcceptedTearing {
 public:
#if defined(FRAMESINK_THREAD_SANITIZER)
  AcceptedTearing() { AnnotateIgnoreWritesBegin(__FILE__, __LINE__); }
  ~AcceptedTearing() { AnnotateIgnoreWritesEnd(__FILE__, __LINE__); }
#else
  AcceptedTearing() {}
#endif
  AcceptedTearing(const AcceptedTearing&) = delete;
  AcceptedTearing& operator=(const AcceptedTearing&) = delete;
};

}  // namespace framesink
