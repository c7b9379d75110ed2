// The wall at every function the host calls (entry points, control callbacks,
// the file browser's callback): nothing thrown inside may cross into the
// host. A failure (an allocation refused, anything thrown) is shown on the
// host's error line and on the console, and the call returns what the host
// expects from a failed call: null for a frame or a callback, the given value
// otherwise.
#pragma once

#include <exception>
#include <new>

// Tells the user that a call failed and why.
void reportEntryFailure(const char* reason) noexcept;

template <class Result, class Body>
Result guardedEntry(Result onFailure, Body&& body) noexcept {
    try {
        return body();
    } catch (const std::bad_alloc&) {
        reportEntryFailure("not enough memory");
    } catch (const std::exception& failure) {
        reportEntryFailure(failure.what());
    } catch (...) {
        reportEntryFailure("unexpected failure");
    }
    return onFailure;
}

template <class Body>
unsigned long* guardedCallback(Body&& body) noexcept {
    return guardedEntry(static_cast<unsigned long*>(nullptr), body);
}

template <class Body>
void guardedCall(Body&& body) noexcept {
    guardedEntry(0, [&body] {
        body();
        return 0;
    });
}
