# In place of OpenWrt's include/cmake.mk: everything that the package needs of it stands in package.mk.
