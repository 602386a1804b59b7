#include "Tools/SarvexTool/Bench/Run/ClientProcess.h"

#include <exception>
#include <utility>

namespace Bench {

ClientProcess::ClientProcess(EventLoop& loop, const OSAL::ChildStart& start, Callback ended)
    : m_child(start),
      m_pEnded(std::make_shared<Callback>(std::move(ended))),
      m_waiter([this, &loop, weakEnded = std::weak_ptr(m_pEnded)] {
          OSAL::ChildEnd end;
          std::exception_ptr failure;
          try {
              end = m_child.Wait();
          } catch (...) {
              failure = std::current_exception();
          }
          loop.Post([weakEnded, end, failure] {
              const auto pEnded = weakEnded.lock();
              if (!pEnded)
                  return;
              if (failure)
                  std::rethrow_exception(failure);
              (*pEnded)(end);
          });
      }) {}

ClientProcess::~ClientProcess() {
    m_child.Kill();
    m_waiter.join();
}

} // namespace Bench
