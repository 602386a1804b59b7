#include "Tools/SarvexTool/Bench/Run/EventLoop.h"

// Asio 1.18 forgets to include it.
#include <utility>

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

namespace Bench {

struct EventLoop::State {
    boost::asio::io_context context;
    /// Run goes on also while there is nothing to wait for.
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work{
        context.get_executor()};
};

EventLoop::EventLoop() : m_pState(std::make_unique<State>()) {}

EventLoop::~EventLoop() = default;

void EventLoop::Run() {
    m_pState->context.restart();
    m_pState->context.run();
}

void EventLoop::Stop() {
    m_pState->context.stop();
}

void EventLoop::Post(std::function<void()> function) {
    boost::asio::post(m_pState->context, std::move(function));
}

boost::asio::io_context& EventLoop::Context() {
    return m_pState->context;
}

} // namespace Bench
