// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <semaphore>

namespace Cli {

/// Lets so many files of a run be computed at once. One that only waits for the disk leaves its
/// place to the next. [any]
class JobPlaces {
public:
    explicit JobPlaces(size_t count)
        : free(static_cast<std::ptrdiff_t>(count))
    {
    }

    /// A place, waited for at the making and left at the end of the scope, if not before.
    class Place {
    public:
        explicit Place(JobPlaces& newPlaces)
            : places(newPlaces)
        {
            places.free.acquire();
        }
        ~Place() { Leave(); }
        Place(const Place&) = delete;
        Place& operator=(const Place&) = delete;

        /// From here on there is nothing to compute.
        void Leave()
        {
            if (!isLeft) {
                isLeft = true;
                places.free.release();
            }
        }

    private:
        JobPlaces& places;
        bool isLeft = false;
    };

private:
    std::counting_semaphore<> free;
};

} // namespace Cli
