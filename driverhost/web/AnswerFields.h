#pragma once

#include <boost/beast/http/fields.hpp>

namespace driverhost {

// What every answer says, whatever it answers.
void SetAnswerFields(boost::beast::http::fields& fields);

}  // namespace driverhost
