#include "stats/LongJob.h"

#include <QEventLoop>
#include <QThread>
#include <QTimer>

#include <exception>
#include <memory>

namespace korvalin {
namespace {

constexpr unsigned long unnoticedMilliseconds = 60; // shorter work is done without letting events in
constexpr int progressMilliseconds = 50;

struct Cancelled {};

} // namespace

void LongJob::At(double fraction) {
    fraction_ = fraction;
    if (cancelled_) throw Cancelled();
}

bool LongJob::Run(const std::function<void()>& work) {
    fraction_ = 0;
    cancelled_ = false;
    std::exception_ptr failure;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        try {
            work();
        } catch (const Cancelled&) {
        } catch (...) {
            failure = std::current_exception();
        }
    }));
    QEventLoop loop;
    connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit, Qt::QueuedConnection);
    thread->start();
    if (!thread->wait(unnoticedMilliseconds)) {
        emit Progress(0);
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [this] { emit Progress(fraction_); });
        timer.start(progressMilliseconds);
        loop.exec();
        if (!thread->isFinished()) Cancel(); // the program ends
        thread->wait();
    }
    if (failure) std::rethrow_exception(failure);
    return !cancelled_;
}

} // namespace korvalin
