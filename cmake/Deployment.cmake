# Where a build finds its servers. The defaults are the sandbox; a build for people sets these.
set(MURMELI_WEB_ORIGIN "http://127.0.0.1:8460" CACHE STRING "Origin of the web service")
set(MURMELI_ACCOUNT_SITE "http://127.0.0.1:8460/account" CACHE STRING "Address of the account site")
set(MURMELI_BOT_LINK "http://127.0.0.1:8460/bot" CACHE STRING "Link of the Telegram bot")

configure_file(${CMAKE_SOURCE_DIR}/cmake/Deployment.h.in ${CMAKE_BINARY_DIR}/generated/Deployment.h @ONLY)
