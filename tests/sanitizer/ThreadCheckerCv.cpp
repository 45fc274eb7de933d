// Linked into the thread tests built under ThreadSanitizer only.
//
// OpenCV splits its loops over TBB's thread pool and waits for them inside
// the same call, through synchronisation the checker cannot see, so it
// would take every loop body's hand-over for a race. Under the checker
// OpenCV runs its loops on the calling thread: the threads our code starts
// (streaming threads, the focus stack's worker) stay checked.

#include <opencv2/core/utility.hpp>

namespace {

const bool kSerialOpenCv = [] {
    cv::setNumThreads(0);
    return true;
}();

} // namespace
