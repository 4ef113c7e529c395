#pragma once

#include <QString>

namespace hazelmark {

/// How many bytes this process can still take, as far as the system tells: what is free or can be freed, swap space
/// included, within the limits of the control groups (both versions) that the process is in, and of its address space.
/// The largest number where nothing is told. `root`: the folder under which `proc` and `sys` are looked for.
qint64 availableMemory(const QString &root = {});

/// While it lives, there is no more memory than this, for all threads. For tests; they do not nest.
class MemoryCap
{
public:
    explicit MemoryCap(qint64 bytes);
    ~MemoryCap();
    MemoryCap(const MemoryCap &) = delete;
    MemoryCap &operator=(const MemoryCap &) = delete;
};

} // namespace hazelmark
