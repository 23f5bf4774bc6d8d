# What the papers of a release say beside its number, which stands in project().
set(KESTRIN_RELEASED 2026-11-21)
set(KESTRIN_RELEASED_EPOCH 1795219200)
set(KESTRIN_RELEASED_RFC "Sat, 21 Nov 2026 00:00:00 +0000")
# Where this copy of the project is published, with docs/pictures beside its pages, and who answers
# for a package of it. The names given here lead nowhere: whoever publishes says where.
set(KESTRIN_WEB "https://kestrin.example" CACHE STRING "Address of the project's pages")
set(KESTRIN_MAINTAINER "The Kestrin authors <authors@kestrin.example>"
    CACHE STRING "Name and address of the package's maintainer")
