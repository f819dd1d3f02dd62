#include "tools/lsp/checks.h"

#include <exception>
#include <utility>

#include "sfg/host/errors.h"
#include "tolmsdk/exception.h"
#include "tolmsdk/unicode.h"

namespace TolmSDK::Graphics::sfg::tools::lsp {

CheckResult runCheck(const CheckJob& job) {
  CheckResult result{job.uri, job.version, {}, {}};
  try {
    result.diagnostics = job.run();
  } catch (const host::InputError& error) {
    result.diagnostics.push_back(error.diagnostic());
  } catch (const Exception& error) {
    result.failure = toUtf8(error.getMessage());
  } catch (const std::exception& error) {
    result.failure = error.what();
  }
  return result;
}

CheckThread::CheckThread(Done done) : done_(std::move(done)), thread_([this] { work(); }) {}

CheckThread::~CheckThread() {
  {
    const std::lock_guard lock(mutex_);
    isStopped_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void CheckThread::start(CheckJob job) {
  {
    const std::lock_guard lock(mutex_);
    jobs_.push_back(std::move(job));
  }
  changed_.notify_one();
}

void CheckThread::work() {
  while (true) {
    CheckJob job;
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return isStopped_ || !jobs_.empty(); });
      if (isStopped_) return;
      job = std::move(jobs_.front());
      jobs_.erase(jobs_.begin());
    }
    done_(runCheck(job));
  }
}

}  // namespace TolmSDK::Graphics::sfg::tools::lsp
