// A large range of address space for one of the ready-made allocators,
// reserved once and never unmapped (blocks made from it may be freed at any
// time later). Pages are backed only when touched, and a long free stretch
// can be handed back to the system while its addresses stay reserved. Bytes.
#pragma once

#include <cstddef>

class zelVirtualRange {
  public:
    // Tries `bytes`, halving down to `minimumBytes` when the system refuses.
    zelVirtualRange(size_t bytes, size_t minimumBytes);

    bool valid() const { return base_ != nullptr; }
    char* base() const { return base_; }
    size_t size() const { return size_; }
    bool contains(const void* address) const {
        auto* a = static_cast<const char*>(address);
        return base_ && a >= base_ && a < base_ + size_;
    }

    // Drops the backing of the whole pages inside [from, to); they read as zero afterwards.
    static void discardPages(void* from, void* to);

  private:
    char* base_ = nullptr;
    size_t size_ = 0;
};
