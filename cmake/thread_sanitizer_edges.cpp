// Tells the thread sanitizer in which order Qt makes things happen. Qt's libraries are not
// instrumented: their mutexes, semaphores, event queues and thread pool work, but the sanitizer
// doesn't see them and takes every value that is handed over by them for a race.
//
// Calls of our code into Qt that hand something over are caught here, by their link names, and
// passed on: before them all that this thread did is released, after them (or where the receiver
// takes its turn) all that was released is acquired. Mutexes and semaphores are told apart by
// address. Events, jobs and the ends of threads share one place, so a race between two sides that
// happen to talk at that moment may stay unseen; one that is invented does not come.
//
// Only built into programs of the preset "tsan".
#include <QtCore/qnamespace.h>
#include <QtCore/qthreadstorage.h>

#include <dlfcn.h>

extern "C" {
void __tsan_acquire(void* address);
void __tsan_release(void* address);
}

namespace {

char handover; // stands for all event queues, the pool and the ends of threads

// Qt destroys a thread's storage in the thread before it reports the thread's end.
struct EndOfThread
{
    ~EndOfThread() { __tsan_release(&handover); }
};

QThreadStorage<EndOfThread>& endOfThread()
{
    static auto* const storage = new QThreadStorage<EndOfThread>; // outlives every thread
    return *storage;
}

void acquireAll()
{
    (void)endOfThread().localData();
    __tsan_acquire(&handover);
}

void releaseAll()
{
    (void)endOfThread().localData();
    __tsan_release(&handover);
}

void acquire(quintptr object)
{
    (void)endOfThread().localData();
    __tsan_acquire(reinterpret_cast<void*>(object));
}

void release(quintptr object)
{
    __tsan_release(reinterpret_cast<void*>(object));
}

// Qt calls this in the receiver's thread with every event, before it is delivered.
bool eventArrives(void** /*receiverEventResult*/)
{
    acquireAll();
    return false;
}

const bool isWatching = QInternal::registerCallback(QInternal::EventNotifyCallback, eventArrives);

template <typename Function> Function* qt(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// By link names of members, which take the object as their first argument. Every argument and
// every result goes through a register of this size.
using A = quintptr;

#define CATCH(name, parameters, arguments, before, after)                                          \
    extern "C" __attribute__((visibility("default"))) A name parameters                            \
    {                                                                                              \
        static auto* const next = qt<A parameters>(#name);                                         \
        before;                                                                                    \
        const A result = next arguments;                                                           \
        after;                                                                                     \
        return result;                                                                             \
    }
#define NOTHING (void)0

// clang-format off

// QMetaObject::activate, of every signal, and invokeMethodImpl.
CATCH(_ZN11QMetaObject8activateEP7QObjectPKS_iPPv, (A o, A m, A i, A v), (o, m, i, v), releaseAll(), NOTHING)
CATCH(_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionTypeEPv, (A o, A s, A t, A r), (o, s, t, r), releaseAll(), NOTHING)
// QObject::deleteLater, QCoreApplication::postEvent.
CATCH(_ZN7QObject11deleteLaterEv, (A o), (o), releaseAll(), NOTHING)
CATCH(_ZN16QCoreApplication9postEventEP7QObjectP6QEventi, (A o, A e, A p), (o, e, p), releaseAll(), NOTHING)

// QThreadPool::start, twice, waitForDone and activeThreadCount.
CATCH(_ZN11QThreadPool5startEP9QRunnablei, (A o, A r, A p), (o, r, p), releaseAll(), NOTHING)
CATCH(_ZN11QThreadPool5startESt8functionIFvvEEi, (A o, A f, A p), (o, f, p), releaseAll(), NOTHING)
CATCH(_ZN11QThreadPool11waitForDoneEi, (A o, A t), (o, t), NOTHING, acquireAll())
CATCH(_ZNK11QThreadPool17activeThreadCountEv, (A o), (o), NOTHING, acquireAll())
// A job of QtConcurrent::run begins with isCanceled and ends with reportFinished.
CATCH(_ZNK20QFutureInterfaceBase10isCanceledEv, (A o), (o), NOTHING, acquireAll())
CATCH(_ZN20QFutureInterfaceBase14reportFinishedEv, (A o), (o), releaseAll(), NOTHING)
// QFutureInterfaceBase::waitForFinished, waitForResult, queryState and the count of references.
CATCH(_ZN20QFutureInterfaceBase15waitForFinishedEv, (A o), (o), NOTHING, acquireAll())
CATCH(_ZN20QFutureInterfaceBase13waitForResultEi, (A o, A i), (o, i), NOTHING, acquireAll())
CATCH(_ZNK20QFutureInterfaceBase10queryStateENS_5StateE, (A o, A s), (o, s), NOTHING, acquireAll())
CATCH(_ZNK20QFutureInterfaceBase6derefTEv, (A o), (o), releaseAll(), acquireAll())

// QThread::wait, twice, isFinished and isRunning.
CATCH(_ZN7QThread4waitE14QDeadlineTimer, (A o, A t, A u), (o, t, u), NOTHING, acquireAll())
CATCH(_ZN7QThread4waitEm, (A o, A t), (o, t), NOTHING, acquireAll())
CATCH(_ZNK7QThread10isFinishedEv, (A o), (o), NOTHING, acquireAll())
CATCH(_ZNK7QThread9isRunningEv, (A o), (o), NOTHING, acquireAll())

// QMutex::lock, tryLock and unlock; QWaitCondition::wait, twice; QSemaphore::acquire, tryAcquire,
// twice, available and release.
CATCH(_ZN6QMutex4lockEv, (A o), (o), NOTHING, acquire(o))
CATCH(_ZN6QMutex7tryLockEi, (A o, A t), (o, t), NOTHING, acquire(o))
CATCH(_ZN6QMutex6unlockEv, (A o), (o), release(o), NOTHING)
CATCH(_ZN14QWaitCondition4waitEP6QMutexm, (A o, A m, A t), (o, m, t), release(m), acquire(m))
CATCH(_ZN14QWaitCondition4waitEP6QMutex14QDeadlineTimer, (A o, A m, A t, A u), (o, m, t, u), release(m), acquire(m))
CATCH(_ZN10QSemaphore7acquireEi, (A o, A n), (o, n), NOTHING, acquire(o))
CATCH(_ZN10QSemaphore10tryAcquireEi, (A o, A n), (o, n), NOTHING, acquire(o))
CATCH(_ZN10QSemaphore10tryAcquireEii, (A o, A n, A t), (o, n, t), NOTHING, acquire(o))
CATCH(_ZNK10QSemaphore9availableEv, (A o), (o), NOTHING, acquire(o))
CATCH(_ZN10QSemaphore7releaseEi, (A o, A n), (o, n), release(o), NOTHING)
