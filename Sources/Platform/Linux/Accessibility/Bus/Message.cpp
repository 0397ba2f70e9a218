// SPDX-FileCopyrightText: 2026 The Quillory developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "Platform/Linux/Accessibility/Bus/Message.h"

namespace platform::desktop::atspi {

namespace {
bool isNullReference(const ElementRef &ref) {
    return ref.isNull() || ref.path == nullPath;
}
} // namespace

bool Reply::isError() const {
    return m_message != nullptr && sd_bus_message_is_method_error(m_message.get(), nullptr) > 0;
}

std::optional<PixelRect> Reply::extents() const {
    const auto rect = as<PixelRect>();
    return rect != PixelRect{-1, -1, -1, -1} ? rect : std::nullopt;
}

std::optional<ElementRef> Reply::reference() const {
    auto reference = as<ElementRef>();
    return reference && !isNullReference(*reference) ? reference : std::nullopt;
}

std::optional<std::vector<ElementRef>> Reply::references(std::size_t limit) const {
    auto references = as<std::vector<ElementRef>>();
    if (references) {
        std::erase_if(*references, isNullReference);
        references->resize(std::min(references->size(), limit));
    }
    return references;
}

std::optional<std::string> vanishedName(sd_bus_message *signal) {
    const auto names = readValues<std::string, std::string, std::string>(signal);
    return names && std::get<2>(*names).empty() ? std::optional(std::get<0>(*names)) : std::nullopt;
}

ElementRef sourceOf(sd_bus_message *signal) {
    const char *sender = sd_bus_message_get_sender(signal);
    const char *path = sd_bus_message_get_path(signal);
    return {sender != nullptr ? sender : "", path != nullptr ? path : ""};
}

} // namespace platform::desktop::atspi
