#pragma once

namespace selfreport {

/// The implementation of a platform interface that is in use: the one that was made usual, or a replacement
/// while an object of this class lives. The last one made ends first.
///
/// @tparam Interface  has a static function usual() that returns a reference to the pointer of the usual
///                    implementation
template <class Interface>
class InUse {
public:
    explicit InUse(Interface& replacement)
        : m_former(s_replacement)
    {
        s_replacement = &replacement;
    }
    ~InUse() { s_replacement = m_former; }
    InUse(const InUse&) = delete;
    InUse& operator=(const InUse&) = delete;

    static Interface& current() { return s_replacement ? *s_replacement : *Interface::usual(); }

private:
    inline static Interface* s_replacement = nullptr;
    Interface* m_former;
};

} // namespace selfreport
