// Linked into the thread tests that run GStreamer, built under
// ThreadSanitizer only.
//
// GStreamer starts every streaming thread from a GLib thread pool: the task
// is handed to a pooled thread through a futex-based queue the checker
// cannot see, so everything the starting thread prepared looks unordered
// with what the streaming thread does with it. Here each task runs on a
// thread of its own, started and joined with pthreads, which the checker
// sees; what GStreamer does on those threads is unchanged.

#include "capture/GstInit.h"

#include <gst/gst.h>

#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <unordered_map>

namespace {

// One thread per running task, keyed by the task (the pushed data).
std::mutex g_mutex;
std::unordered_map<gpointer, std::thread> g_threads;

std::thread Take(gpointer task)
{
    std::lock_guard lock(g_mutex);
    const auto it = g_threads.find(task);
    if (it == g_threads.end())
        return {};
    std::thread thread = std::move(it->second);
    g_threads.erase(it);
    return thread;
}

gpointer Push(GstTaskPool*, GstTaskPoolFunction func, gpointer task, GError**)
{
    // A task started again without a join: its last thread has left the
    // task function already.
    if (std::thread old = Take(task); old.joinable())
        old.join();
    std::lock_guard lock(g_mutex);
    g_threads.emplace(task, std::thread(func, task));
    return task;
}

void Join(GstTaskPool*, gpointer task)
{
    if (std::thread thread = Take(task); thread.joinable())
        thread.join();
}

void DisposeHandle(GstTaskPool*, gpointer task)
{
    if (std::thread thread = Take(task); thread.joinable())
        thread.detach();
}

void Prepare(GstTaskPool*, GError**)
{
}

void Cleanup(GstTaskPool*)
{
}

} // namespace

struct OculixThreadPool
{
    GstTaskPool parent;
};

struct OculixThreadPoolClass
{
    GstTaskPoolClass parent_class;
};

G_DEFINE_TYPE(OculixThreadPool, oculix_thread_pool, GST_TYPE_TASK_POOL)

static void oculix_thread_pool_class_init(OculixThreadPoolClass* klass)
{
    GstTaskPoolClass* pool = GST_TASK_POOL_CLASS(klass);
    pool->prepare = Prepare;
    pool->cleanup = Cleanup;
    pool->push = Push;
    pool->join = Join;
    pool->dispose_handle = DisposeHandle;
}

static void oculix_thread_pool_init(OculixThreadPool*)
{
}

struct OculixTaskTracer
{
    GstTracer parent;
};

struct OculixTaskTracerClass
{
    GstTracerClass parent_class;
};

G_DEFINE_TYPE(OculixTaskTracer, oculix_task_tracer, GST_TYPE_TRACER)

static void oculix_task_tracer_class_init(OculixTaskTracerClass*)
{
}

static void oculix_task_tracer_init(OculixTaskTracer*)
{
}

namespace {

GstTaskPool* g_pool = nullptr;

// Every task, as it is made, takes the pool above instead of the shared one.
void ObjectCreated(GstTracer*, GstClockTime, GstObject* object)
{
    if (GST_IS_TASK(object))
        gst_task_set_pool(GST_TASK(object), g_pool);
}

class VisibleStreamingThreads : public ::testing::Environment
{
public:
    void SetUp() override
    {
        ASSERT_TRUE(EnsureGStreamer());
        // The V4L2 device provider's thread hands its main context back
        // through GLib's futex-based locks when it stops. The tests watch
        // simulated cameras only, so the provider is left out.
        if (GstPluginFeature* v4l2 = gst_registry_lookup_feature(gst_registry_get(), "v4l2deviceprovider")) {
            gst_plugin_feature_set_rank(v4l2, GST_RANK_NONE);
            gst_object_unref(v4l2);
        }
        g_pool = GST_TASK_POOL(gst_object_ref_sink(g_object_new(oculix_thread_pool_get_type(), nullptr)));
        GST_OBJECT_FLAG_SET(g_pool, GST_OBJECT_FLAG_MAY_BE_LEAKED);
        // A tracer with nothing but this hook; the hook keeps it.
        auto* tracer = GST_TRACER(gst_object_ref_sink(g_object_new(oculix_task_tracer_get_type(), nullptr)));
        gst_tracing_register_hook(tracer, "object-created", G_CALLBACK(ObjectCreated));
        gst_object_unref(tracer);
    }
};

const auto* const g_environment = ::testing::AddGlobalTestEnvironment(new VisibleStreamingThreads);

} // namespace
