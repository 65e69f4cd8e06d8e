#include "app/failure/child_thread.h"

#include "app/console/console.h"
#include "app/failure/exceptions.h"

namespace zvp {

void stop_in_child_thread() noexcept {
    try {
        throw;
    } catch (const Exception& exception) {
        exception.print();
    } catch (const std::exception& exception) {
        StdException(exception).print();
    } catch (...) { // of no type that has a text
    }
    fatal_stop("FATAL ERROR: Unhandled exception in child thread.");
}

} // namespace zvp
