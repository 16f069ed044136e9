# In place of OpenWrt's include/package.mk: a goal for each section, run as the SDK would run it.
#   make prepare | dev | install DESTINATION=DIR | values
PKG_BUILD_DIR := $(WORK)/source
define BuildPackage
prepare:
	$$(call Build/Prepare)
dev:
	$$(call Build/InstallDev,$(DESTINATION))
install:
	$$(call Package/$(1)/install,$(DESTINATION))
values:
	@echo '$(PKG_NAME) $(PKG_VERSION) $(PKG_INSTALL)'
	@echo '$(strip $(CMAKE_OPTIONS))'
	@echo '$$(strip $$(call Package/$(1)/conffiles))'
endef
