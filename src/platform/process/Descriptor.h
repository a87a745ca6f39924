// A file descriptor that is closed with the object that holds it, and pairs of them.
#pragma once

class Descriptor
{
public:
    // Takes `number` over; -1 is none.
    explicit Descriptor(int number = -1) : m_number(number) {}
    Descriptor(Descriptor &&other) noexcept;
    Descriptor &operator=(Descriptor &&other) noexcept;
    ~Descriptor();

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }
    // From now on the caller closes it.
    int release();

private:
    int m_number;
};

struct Pipe
{
    Descriptor reading;
    Descriptor writing;

    // Both ends are closed by exec and lie above the three standard descriptors, which a child's own would
    // otherwise overwrite where this process was started with one of them closed. Throws a SystemError.
    static Pipe make();
};
