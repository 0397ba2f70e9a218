// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Quillory/Tasks.h"

#include <system_error>

namespace quillory {

Tasks::~Tasks() {
    for (auto &running : m_running) {
        running.thread.request_stop();
    }
}

std::optional<Task> Tasks::start(std::function<void(std::stop_token)> work) {
    reap();
    auto &running = m_running.emplace_back();
    try {
        running.thread = std::jthread([&running, work = std::move(work)](const std::stop_token &stop) {
            work(stop);
            running.finished = true;
        });
    } catch (const std::system_error &) {
        m_running.pop_back();
        return std::nullopt;
    }
    return Task(running.thread.get_stop_source());
}

// Joins the threads that have finished, so that each stack is freed at the next start at the latest.
void Tasks::reap() {
    m_running.remove_if([](const Running &running) { return running.finished.load(); });
}

} // namespace quillory
