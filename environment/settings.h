// Settings store: ZV.File and Zarvolt8.inf.
#pragma once
