#pragma once

// Identifiers that the dialog templates and the code share.
#define KWA_WELCOME_PAGE 101
#define KWA_EULA_PAGE 102
#define KWA_PROGRESS_PAGE 103
#define KWA_FINISH_PAGE 104

#define KWA_WELCOME_TITLE 201
#define KWA_WELCOME_INTRO 202
#define KWA_WELCOME_HINT 203
#define KWA_EULA 204
#define KWA_EULA_YES 205
#define KWA_EULA_NO 206
#define KWA_STAND_IN 207
#define KWA_PACKAGE 208
#define KWA_PROGRESS 209
#define KWA_FINISH_TITLE 210
#define KWA_FINISH_INTRO 211
#define KWA_PACKAGES 212
#define KWA_FINISH_HINT 213
