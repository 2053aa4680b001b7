// Selection filters: group lists compiled into a test on an entity's data.
