// Task<T> is what an operation that waits returns. It is eager (it runs up to its first wait inside the call)
// and detached (dropping it cancels nothing); exceptions reach whoever awaits it.
#pragma once

#include <qcorotask.h>

template <class T = void>
using Task = QCoro::Task<T>;
