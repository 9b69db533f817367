#include "platform/replacing.h"

#include "platform/files.h"
#include "platform/paths.h"

namespace platform {

int Replacement::prepare() {
    if (!temporary_ || is_on_disk_) return 0;
    const int error = flush_file(temporary_->name());
    is_on_disk_ = error == 0;
    return error;
}

int Replacement::commit() {
    if (!temporary_) return 0;
    if (const int error = prepare(); error != 0) return error;
    if (const int error = temporary_->rename_to(target_); error != 0) return error;
    flush_folder(folder_of(target_));  // the name is there already
    temporary_.reset();
    return 0;
}

}  // namespace platform
