#include "fsi/xml/sxml/group_path.h"

OpenGroup GroupPath::groups[GroupPath::CAPACITY];
