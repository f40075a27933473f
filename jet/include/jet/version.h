// The version of the library. The first number changes when programs have to be changed for it, the
// second when something is added, the third otherwise.
#pragma once

#define JET_VERSION_MAJOR 1
#define JET_VERSION_MINOR 0
#define JET_VERSION_PATCH 0
